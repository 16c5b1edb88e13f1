// SPDX-License-Identifier: Apache-2.0
//
// What decided, for people: which node or elite rule, and the tests that lead to it. Pure
// functions.
#pragma once

#include "rules/evaluate/JudgedVector.h"
#include "rules/model/RuleSet.h"

#include <string>
#include <vector>

namespace Quorvane::Workshop {

// "node 11", "elite rule 9001", "nothing".
std::string deciderName(Rules::Decider const& decider);

// The tests that lead to a decider, as the rule language writes them; empty when the set does not
// have it.
std::vector<std::string> deciderTests(Rules::RuleSet const& set, Rules::Decider const& decider);

// The same as one text: "first_reverse_dynamic == yes and ...".
std::string deciderConditions(Rules::RuleSet const& set, Rules::Decider const& decider);

} // namespace Quorvane::Workshop
