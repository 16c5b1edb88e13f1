// SPDX-License-Identifier: Apache-2.0
//
// A rule text as it was written: what the parser passes to the builders. Records hold the values
// that the text gives; the words beside them list its options, and the builders add what was left
// out.
#pragma once

#include "rules/language/Diagnostic.h"
#include "rules/model/RuleSet.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

namespace Quorvane::Rules {

// The options that a statement gives, as words of the text.
using GivenWords = std::set<std::string_view>;

template<typename T>
struct Placed {
    Position m_position;
    T m_value;
};

// What a rule or a node is called, for people.
struct NamingSyntax {
    std::optional<Placed<Bytes>> m_name;
    std::optional<Placed<Bytes>> m_sentence;
};

struct EliteHeaderSyntax {
    Position m_position;
    EliteFileHeader m_header{};
    GivenWords m_given;
};

struct EliteRuleSyntax {
    Position m_position;
    EliteNodes m_rule{};
    std::vector<Position> m_conditionPlaces; // in the order of m_rule.conditions
    NamingSyntax m_naming;
    GivenWords m_given;
};

struct NodeSyntax;

// A node written in place, or a reference to one by number.
struct ChildSyntax {
    Position m_position;
    std::int32_t m_reference = 0;
    NodeSyntax const* m_node = nullptr; // empty: a reference
};

struct NodeSyntax {
    Position m_position;
    Position m_conditionPosition;
    bool m_isRoot = false;
    std::optional<std::int32_t> m_number;
    DTNode m_record{};
    NamingSyntax m_naming;
    GivenWords m_given;
    bool m_hasBlock = false;
    std::vector<ChildSyntax> m_children;
};

// A node and those nested in it, in reading order. A deque, so that nodes keep their places.
using NodeList = std::deque<NodeSyntax>;

struct RulesSyntax {
    std::optional<Placed<std::int32_t>> m_version;
    std::optional<Placed<Bytes>> m_readme;
    std::optional<Placed<Bytes>> m_namesFile;
    std::optional<EliteHeaderSyntax> m_eliteHeader;
    std::vector<EliteRuleSyntax> m_eliteRules;
    std::optional<Placed<Bytes>> m_eliteTail;
    NodeList m_tree; // the root first; empty without a tree
    NodeList m_looseNodes;
    std::optional<Placed<Bytes>> m_treeTail;
};

} // namespace Quorvane::Rules
