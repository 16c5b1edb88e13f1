// SPDX-License-Identifier: Apache-2.0
#include "rules/check/Checks.h"
#include "rules/format/RuleTests.h"

#include <algorithm>

namespace Quorvane::Rules {

namespace {

constexpr std::int32_t s_type(RuleKey::Kind kind) {
    return kind == RuleKey::Kind::decide ? EliteType::deciding : EliteType::adjusting;
}

// Nodes 0 and 1 belong to the program that wrote the file.
bool s_hasNode(RuleSet const& set, std::int32_t number) {
    return number >= treeRoot && std::cmp_less(number, set.m_nodes.size());
}

bool s_hasRule(RuleSet const& set, RuleKey const& key) {
    if (key.m_kind == RuleKey::Kind::node) {
        return s_hasNode(set, key.m_number);
    }
    return set.m_elite && std::any_of(set.m_elite->m_rules.begin(), set.m_elite->m_rules.end(),
                                      [&key](EliteNodes const& rule) {
                                          return rule.type == s_type(key.m_kind) &&
                                                 rule.code == key.m_number;
                                      });
}

} // namespace

void checkNames(RuleSet const& set, Findings& findings) {
    auto const [names, problem] = readNames(set.m_names);
    if (!problem.empty()) {
        findings.push_back({Finding::Severity::warning, "names-unusable", Finding::File::names,
                            "the names cannot be used: " + problem,
                            "correct the file; until then rules are shown without names"});
    }
    for (auto const& [key, name] : names) {
        if (!s_hasRule(set, key)) {
            findings.push_back({Finding::Severity::warning,
                                "name-without-rule",
                                Finding::File::names,
                                "there is a name for " + keyWords(key) + ", but no such " +
                                    (key.m_kind == RuleKey::Kind::node ? "node" : "rule"),
                                "give it the number of the one that it is for, or drop it",
                                {},
                                {},
                                key});
        }
    }
}

} // namespace Quorvane::Rules
