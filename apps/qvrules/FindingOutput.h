// SPDX-License-Identifier: Apache-2.0
//
// Findings for people and for programs.
#pragma once

#include "rules/check/Finding.h"
#include "rules/language/LoadRules.h"

#include <string>

namespace Quorvane::RulesApp {

struct CheckedRules {
    std::string m_path;
    Rules::LoadedRules const& m_rules;
    // The folder that they are compared with; empty: none.
    std::string m_against;
};

// One line per finding, "FILE:LINE:COLUMN: severity: where: problem; advice [id]", and a line with
// their number. Findings in a folder name the file and the node or rule instead of a line.
std::string findingsAsText(CheckedRules const& checked, Rules::Findings const& findings);
// {"path":…,"errors":…,"warnings":…,"findings":[{…}]}, with "against" and
// "differences" before the findings when rules were compared; places that a finding lacks are null.
std::string findingsAsJson(CheckedRules const& checked, Rules::Findings const& findings);

} // namespace Quorvane::RulesApp
