// SPDX-License-Identifier: Apache-2.0
//
// `qvrules diff`: which verdicts change between two rule sets, and by which rules.
#pragma once

#include "apps/qvrules/HostOptions.h"
#include "apps/qvrules/TrainingMail.h"

#include <string>

namespace Quorvane::RulesApp {

struct DiffArguments : MailPaths {
    std::string m_old; // text or folder
    std::string m_new;
    std::string m_format = "text";
    std::string m_output = "-"; // "-": standard output
    GivenSettings m_settings;
};

// ExitStatus::findings when the verdict of a message changes.
int diff(DiffArguments const& arguments);

} // namespace Quorvane::RulesApp
