// SPDX-License-Identifier: Apache-2.0
//
// The compiler of rule texts: text to RuleSet, with the place in the text of everything in it.
#pragma once

#include "rules/language/Diagnostic.h"
#include "rules/model/RuleNames.h"
#include "rules/model/RuleSet.h"

#include <map>
#include <string_view>
#include <vector>

namespace Quorvane::Rules {

// The places of the parts of a set in its text. The lists are parallel to those of the set.
struct RulePlaces {
    Position m_version;
    Position m_eliteHeader;
    std::vector<Position> m_rules;
    std::vector<std::vector<Position>> m_conditions;
    std::vector<Position> m_nodes;
    std::map<RuleKey, Position> m_names; // those given at rules and nodes
    Position m_namesFile;
};

struct CompiledRules {
    RuleSet m_set;
    // Those given at rules and nodes; the file of names in the set is made of them.
    RuleNames m_names;
    RulePlaces m_places;
    // In the order of the text; the set means nothing when there are any.
    std::vector<Diagnostic> m_errors;
};

// Nodes without a number get one: the root is 2, the others follow in reading order from 3 on, and
// numbers that are written somewhere are skipped. Only records 0 to 2 may be without a node; they
// are zero then.
CompiledRules compileRules(std::string_view text);

} // namespace Quorvane::Rules
