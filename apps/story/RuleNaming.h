// SPDX-License-Identifier: Apache-2.0
//
// Names of rules, joined with what a record or a report says by number. Pure functions; a result
// points into `names` and must not outlive them. Null: it has no name.
#pragma once

#include "rules/model/RuleNames.h"
#include "ScanRecord.h"

#include <string>

namespace Quorvane {

// Of an elite rule, by the type and code of its record.
Rules::RuleName const* eliteRuleName(Rules::RuleNames const& names, std::int32_t type,
                                     std::int32_t code);
Rules::RuleName const* treeNodeName(Rules::RuleNames const& names, std::int32_t number);

// Of what decided: an elite rule or a node, by the number in the answer.
Rules::RuleName const* deciderName(Rules::RuleNames const& names, Decision decision,
                                   std::int32_t number);
inline Rules::RuleName const* deciderName(Rules::RuleNames const& names,
                                          RecordedVerdict const& verdict) {
    return deciderName(names, verdict.decision, verdict.node);
}

// " (A consumer line)", to follow a number; empty without a name.
std::string inBrackets(Rules::RuleName const* name);
// The name alone; empty without one.
std::string nameText(Rules::RuleName const* name);
// "A consumer line: Why the rule is there.", or the name alone; empty without one.
std::string nameAndSentence(Rules::RuleName const* name);

} // namespace Quorvane
