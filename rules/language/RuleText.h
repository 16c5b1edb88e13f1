// SPDX-License-Identifier: Apache-2.0
//
// The decompiler: a RuleSet as a text that compiles to exactly the same bytes, whatever the files
// hold.
//
// An ordinary set looks as a person would write it: numbers of nodes are left out where the
// compiler would give the same, defaults are left out, children are nested. Only what the ordinary
// form cannot say is written with the raw words (docs/writing-rules.md, "Odd files").
#pragma once

#include "rules/model/RuleSet.h"

#include <string>

namespace Quorvane::Rules {

std::string ruleText(RuleSet const& set);

// "first_helo_dynamic == yes": a test as the language writes it. Tests other than 0 and 1 come out
// in their raw form.
std::string conditionText(EliteCondition const& condition);

} // namespace Quorvane::Rules
