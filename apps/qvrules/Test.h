// SPDX-License-Identifier: Apache-2.0
//
// `qvrules test`: rules tried on cases with a known answer.
#pragma once

#include "apps/workshop/CaseRunner.h"

#include <string>
#include <vector>

namespace Quorvane::RulesApp {

struct TestedCase {
    std::string m_path;
    Workshop::RuleCase const* m_case;
    Workshop::CaseResult m_result;
};

// Each a whole report; the text has one line for each case that failed, then a summary.
std::string testText(std::vector<TestedCase> const& cases);
std::string testJson(std::vector<TestedCase> const& cases);

} // namespace Quorvane::RulesApp
