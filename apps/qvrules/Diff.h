// SPDX-License-Identifier: Apache-2.0
//
// `qvrules diff`: which verdicts change between two rule sets, and by which rules.
#pragma once

#include "apps/qvrules/HostOptions.h"

#include <string>
#include <vector>

namespace Quorvane::RulesApp {

struct DiffArguments {
    std::string m_old; // text or folder
    std::string m_new;
    // Each [CORPUS=]PATH.
    std::vector<std::string> m_on; // unsorted mail
    std::vector<std::string> m_ham;
    std::vector<std::string> m_spam;
    std::vector<std::string> m_vectors;
    std::vector<std::string> m_onVectors;
    std::vector<std::string> m_hamVectors;
    std::vector<std::string> m_spamVectors;
    std::string m_format = "text";
    std::string m_output = "-"; // "-": standard output
    GivenSettings m_settings;
};

// ExitStatus::findings when the verdict of a message changes.
int diff(DiffArguments const& arguments);

} // namespace Quorvane::RulesApp
