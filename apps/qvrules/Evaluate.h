// SPDX-License-Identifier: Apache-2.0
//
// `qvrules evaluate`: what rules do on sorted mail, in figures.
#pragma once

#include "apps/qvrules/HostOptions.h"
#include "apps/qvrules/TrainingMail.h"

#include <string>

namespace Quorvane::RulesApp {

struct EvaluateArguments : MailPaths {
    std::string m_rules;   // text or folder
    std::string m_augment; // copies are corpora of their own
    std::string m_format = "text";
    std::string m_output = "-"; // "-": standard output
    GivenSettings m_settings;
};

int evaluate(EvaluateArguments const& arguments);

} // namespace Quorvane::RulesApp
