// SPDX-License-Identifier: Apache-2.0
//
// `qvrules evaluate`: what rules do on sorted mail, in figures.
#pragma once

#include "apps/qvrules/HostOptions.h"

#include <string>
#include <vector>

namespace Quorvane::RulesApp {

struct EvaluateArguments {
    std::string m_rules; // text or folder
    // Each [CORPUS=]PATH.
    std::vector<std::string> m_ham;
    std::vector<std::string> m_spam;
    std::vector<std::string> m_vectors;
    std::vector<std::string> m_hamVectors;
    std::vector<std::string> m_spamVectors;
    std::string m_augment; // copies are corpora of their own
    std::string m_format = "text";
    std::string m_output = "-"; // "-": standard output
    GivenSettings m_settings;
};

int evaluate(EvaluateArguments const& arguments);

} // namespace Quorvane::RulesApp
