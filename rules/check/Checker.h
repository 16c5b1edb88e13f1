// SPDX-License-Identifier: Apache-2.0
//
// The checker: it finds everything in a rule set that a loader would reject or drop, that the tree
// walk has to guard against, or that never has an effect; and whether a host with given settings
// can get a verdict from it.
//
// It uses the attribute table: a test holds only for values that the engine can write. Attributes
// are treated as independent, so the checker never calls a test impossible that a message could
// pass.
#pragma once

#include "platform/DeepHeaderSettings.h"
#include "rules/check/Finding.h"
#include "rules/model/RuleSet.h"

namespace Quorvane::Rules {

// All findings: README, names, elite rules in their order, the tree by node, then the set as a
// whole. `settings` are those of the hosts that are to use it, on the scale of the rules (0..1).
Findings checkRules(RuleSet const& set, DeepHeaderSettings const& settings);

// Whether a host can load the set; the reason when not.
std::optional<std::string> loadProblem(RuleSet const& set);

} // namespace Quorvane::Rules
