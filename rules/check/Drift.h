// SPDX-License-Identifier: Apache-2.0
//
// Drift: how the rule files of a folder differ from the rules that they should come from.
//
// Everything that the files hold is compared, by what it says and not by its place among the bytes:
// each finding names a node, an elite rule or a field. A rule that was put in or taken out in the
// middle does not make all rules after it differ.
#pragma once

#include "rules/check/Finding.h"
#include "rules/model/RuleSet.h"

namespace Quorvane::Rules {

// The differences of `files` from `rules`, of severity `difference`, empty when the files say the
// same. Numbers are those of `rules`, or of `files` for what only they have. A greater version of
// the files is no difference: installing makes it grow.
Findings driftFindings(RuleSet const& rules, RuleSet const& files);

} // namespace Quorvane::Rules
