// SPDX-License-Identifier: Apache-2.0
//
// Findings for people and for programs.
#pragma once

#include "rules/check/Finding.h"
#include "rules/language/LoadRules.h"

#include <string>

namespace Quorvane::RulesApp {

// One line a finding, "FILE:LINE:COLUMN: severity: where: problem; advice [id]", and a line with
// their number. Findings in a folder name the file and the node or rule instead of a line.
std::string findingsAsText(std::string const& path, Rules::LoadedRules const& rules,
                           Rules::Findings const& findings);
// {"path":…,"errors":…,"warnings":…,"findings":[{…}]}; places that a finding has not are null.
std::string findingsAsJson(std::string const& path, Rules::LoadedRules const& rules,
                           Rules::Findings const& findings);

} // namespace Quorvane::RulesApp
