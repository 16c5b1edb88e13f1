// SPDX-License-Identifier: Apache-2.0
//
// What decided, for people: which node or elite rule, the tests that lead to it, and what the
// message has. Pure functions.
#pragma once

#include "rules/evaluate/JudgedVector.h"
#include "rules/model/RuleNames.h"
#include "rules/model/RuleSet.h"

#include <string>
#include <vector>

namespace Quorvane::Workshop {

// The name of a decider; null: none. It points into `names`.
Rules::RuleName const* deciderRuleName(Rules::RuleNames const& names,
                                       Rules::Decider const& decider);

// Why it is there; empty when its rules do not say so.
std::string deciderSentence(Rules::RuleNames const& names, Rules::Decider const& decider);

// "node 11", "elite rule 9001 (A consumer line)", "nothing".
std::string deciderText(Rules::RuleNames const& names, Rules::Decider const& decider);

struct DeciderTest {
    std::string m_text;  // as the rule language writes it: "first_reverse_dynamic == yes"
    std::string m_words; // "the reverse name of ... looks dynamically assigned"
};

// The tests that lead to a decider; empty when the set does not have it.
std::vector<DeciderTest> deciderTests(Rules::RuleSet const& set, Rules::Decider const& decider);

// What a vector has that a scan does not start with, as "NAME is VALUE" and in words.
std::vector<DeciderTest> vectorFacts(Rules::AttributeVector const& vector);

// The texts of the tests as one: "first_reverse_dynamic == yes and ...".
std::string deciderConditions(Rules::RuleSet const& set, Rules::Decider const& decider);

} // namespace Quorvane::Workshop
