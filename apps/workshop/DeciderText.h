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

struct DeciderTest {
    std::string m_text;  // as the rule language writes it: "first_reverse_dynamic == yes"
    std::string m_words; // "the reverse name of ... looks dynamically assigned"
};

// The tests that lead to a decider; empty when the set does not have it.
std::vector<DeciderTest> deciderTests(Rules::RuleSet const& set, Rules::Decider const& decider);

// Their texts as one: "first_reverse_dynamic == yes and ...".
std::string deciderConditions(Rules::RuleSet const& set, Rules::Decider const& decider);

} // namespace Quorvane::Workshop
