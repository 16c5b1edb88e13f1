// SPDX-License-Identifier: Apache-2.0
//
// A rule text as it was written: what the parser makes and the compiler turns into a RuleSet. What
// was not written stays empty; the compiler knows the defaults.
#pragma once

#include "rules/language/Diagnostic.h"
#include "rules/model/RuleSet.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace Quorvane::Rules {

struct ConditionSyntax {
    Position m_position;
    EliteCondition m_test{};
};

struct EliteHeaderSyntax {
    Position m_position;
    std::optional<std::int32_t> m_selectMode;
    std::optional<std::int32_t> m_alsoWalkTree;
    std::optional<std::int32_t> m_count;
    std::optional<std::int32_t> m_reserved1;
    std::optional<std::int32_t> m_reserved2;
    std::optional<Bytes> m_reserved3;
};

struct EliteRuleSyntax {
    Position m_position;
    std::int32_t m_type = 0;
    double m_weight = 0;
    std::optional<std::int32_t> m_code;
    std::optional<double> m_support;
    std::optional<std::int32_t> m_level;
    std::optional<std::int32_t> m_flag;
    std::optional<std::int32_t> m_reserved;
    std::optional<std::int32_t> m_conditionCount;
    std::vector<ConditionSyntax> m_conditions;
};

struct ChildSyntax;

struct NodeSyntax {
    Position m_position;
    bool m_isRoot = false;
    std::optional<std::int32_t> m_number;
    std::optional<ConditionSyntax> m_condition;
    std::optional<double> m_confidence;
    std::optional<double> m_support;
    std::optional<std::array<std::int32_t, 3>> m_counts;
    std::optional<std::int32_t> m_leaf;
    std::optional<Bytes> m_reserved1;
    std::optional<std::int32_t> m_reserved2;
    std::optional<std::int32_t> m_childCount;
    std::optional<std::array<std::int32_t, maxChildren>> m_slots;
    bool m_hasBlock = false;
    std::vector<ChildSyntax> m_children;
};

// A node written in place, or a reference to one by number.
struct ChildSyntax {
    Position m_position;
    std::optional<std::int32_t> m_reference;
    NodeSyntax m_node;
};

template<typename T>
struct Placed {
    Position m_position;
    T m_value;
};

struct RulesSyntax {
    std::optional<Placed<std::int32_t>> m_version;
    std::optional<Placed<Bytes>> m_readme;
    std::optional<EliteHeaderSyntax> m_eliteHeader;
    std::vector<EliteRuleSyntax> m_eliteRules;
    std::optional<Placed<Bytes>> m_eliteTail;
    std::optional<NodeSyntax> m_tree;
    std::vector<NodeSyntax> m_looseNodes;
    std::optional<Placed<Bytes>> m_treeTail;
};

} // namespace Quorvane::Rules
