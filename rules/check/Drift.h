// SPDX-License-Identifier: Apache-2.0
//
// Drift: how the rule files of a folder differ from the rules that they should come from.
//
// Everything in the files is compared by its meaning, not byte by byte: each finding names a node,
// an elite rule or a field. A rule added or removed in the middle does not make all later rules
// differ.
#pragma once

#include "rules/check/Finding.h"
#include "rules/model/RuleSet.h"

namespace Quorvane::Rules {

// The differences of `files` from `rules`, of severity `difference`. Numbers are those of `rules`,
// or of `files` for what only they have. A greater version of the files is not a difference:
// installing increases it.
Findings driftFindings(RuleSet const& rules, RuleSet const& files);

} // namespace Quorvane::Rules
