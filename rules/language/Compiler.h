// SPDX-License-Identifier: Apache-2.0
//
// The compiler of rule texts: text to RuleSet, with the place in the text of everything in it.
#pragma once

#include "rules/language/Diagnostic.h"
#include "rules/model/RuleSet.h"

#include <string_view>
#include <vector>

namespace Quorvane::Rules {

// Where the parts of a set stand in its text. The lists run parallel to those of the set.
struct RulePlaces {
    Position m_version;
    Position m_eliteHeader;
    std::vector<Position> m_rules;
    std::vector<std::vector<Position>> m_conditions;
    std::vector<Position> m_nodes;
};

struct CompiledRules {
    RuleSet m_set;
    RulePlaces m_places;
    // In the order of the text; the set means nothing when there are any.
    std::vector<Diagnostic> m_errors;
};

// Nodes that have no number written get one: the root is 2, the others follow in reading order from
// 3 on, past every number that is written somewhere. Numbers that no node has are left to records
// 0 to 2 alone, which are zero then.
CompiledRules compileRules(std::string_view text);

} // namespace Quorvane::Rules
