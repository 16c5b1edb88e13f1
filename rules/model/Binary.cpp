// SPDX-License-Identifier: Apache-2.0
#include "rules/model/Binary.h"

#include <cstring>
#include <type_traits>
#include <utility>

namespace Quorvane::Rules {

namespace {

// Moves `record` from the front of `bytes`; false, and nothing moved, when there are too few.
template<typename Record>
bool s_take(std::string_view& bytes, Record& record) {
    static_assert(std::is_trivially_copyable_v<Record>);
    if (bytes.size() < sizeof record) {
        return false;
    }
    std::memcpy(&record, bytes.data(), sizeof record);
    bytes.remove_prefix(sizeof record);
    return true;
}

template<typename Record>
void s_put(Bytes& bytes, Record const& record) {
    static_assert(std::is_trivially_copyable_v<Record>);
    bytes.append(reinterpret_cast<char const*>(&record), sizeof record);
}

// One rule with its conditions; false, and nothing moved, when the loader would stop here.
bool s_takeRule(std::string_view& bytes, EliteNodes& rule) {
    auto rest = bytes;
    EliteRecord& record = rule;
    if (!s_take(rest, record) || record.conditionCount > maxEliteConditions) {
        return false;
    }
    for (std::int32_t i = 0; i < record.conditionCount; ++i) {
        EliteCondition condition{};
        if (!s_take(rest, condition)) {
            return false;
        }
        rule.conditions.push_back(condition);
    }
    bytes = rest;
    return true;
}

} // namespace

void readTree(std::string_view bytes, RuleSet& set) {
    set.m_nodes.clear();
    DTNode node{};
    while (s_take(bytes, node)) {
        set.m_nodes.push_back(node);
    }
    set.m_treeTail = Bytes(bytes);
}

Bytes writeTree(RuleSet const& set) {
    Bytes bytes;
    for (auto const& node : set.m_nodes) {
        s_put(bytes, node);
    }
    return bytes + set.m_treeTail;
}

EliteFile readElite(std::string_view bytes) {
    EliteFile elite;
    EliteFileHeader header{};
    if (s_take(bytes, header)) {
        elite.m_header = header;
        while (std::cmp_less(elite.m_rules.size(), header.nodeCount) &&
               elite.m_rules.size() < maxEliteNodes) {
            EliteNodes rule{};
            if (!s_takeRule(bytes, rule)) {
                break;
            }
            elite.m_rules.push_back(std::move(rule));
        }
    }
    elite.m_tail = Bytes(bytes);
    return elite;
}

Bytes writeElite(EliteFile const& elite) {
    Bytes bytes;
    if (elite.m_header) {
        s_put(bytes, *elite.m_header);
    }
    for (auto const& rule : elite.m_rules) {
        s_put(bytes, static_cast<EliteRecord const&>(rule));
        for (auto const& condition : rule.conditions) {
            s_put(bytes, condition);
        }
    }
    return bytes + elite.m_tail;
}

} // namespace Quorvane::Rules
