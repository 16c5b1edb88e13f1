// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/DeciderText.h"

#include "rules/language/RuleText.h"

#include <algorithm>

namespace Quorvane::Workshop {

namespace {

std::size_t s_parentOf(std::vector<DTNode> const& nodes, std::int32_t number) {
    for (std::size_t parent = treeRoot; parent < nodes.size(); ++parent) {
        auto const& node = nodes[parent];
        auto const count = std::clamp(node.childCount, 0, maxChildren);
        auto const* const begin = node.children.data();
        if (std::find(begin, begin + count, number) != begin + count) {
            return parent;
        }
    }
    return treeRoot;
}

// A damaged set may name a node as its own ancestor: no path is longer than the table.
std::vector<std::string> s_pathTo(std::vector<DTNode> const& nodes, std::int32_t number) {
    std::vector<std::string> path;
    for (int step = 0; step < treeTableSize && number > treeRoot &&
                       static_cast<std::size_t>(number) < nodes.size();
         ++step) {
        auto const& node = nodes[static_cast<std::size_t>(number)];
        path.push_back(Rules::conditionText(node.attribute, node.test, node.testValue));
        number = static_cast<std::int32_t>(s_parentOf(nodes, number));
    }
    std::reverse(path.begin(), path.end());
    return path;
}

std::vector<std::string> s_testsOf(EliteNodes const& rule) {
    std::vector<std::string> tests;
    for (auto const& condition : rule.conditions) {
        tests.push_back(Rules::conditionText(condition.attribute, condition.test, condition.value));
    }
    return tests;
}

} // namespace

std::string deciderName(Rules::Decider const& decider) {
    if (decider.m_number == 0) {
        return "nothing";
    }
    return (decider.m_isElite ? "elite rule " : "node ") + std::to_string(decider.m_number);
}

std::vector<std::string> deciderTests(Rules::RuleSet const& set, Rules::Decider const& decider) {
    if (!decider.m_isElite) {
        return s_pathTo(set.m_nodes, decider.m_number);
    }
    if (set.m_elite) {
        for (auto const& rule : set.m_elite->m_rules) {
            if (rule.type == EliteType::deciding && rule.code == decider.m_number) {
                return s_testsOf(rule);
            }
        }
    }
    return {};
}

std::string deciderConditions(Rules::RuleSet const& set, Rules::Decider const& decider) {
    std::string text;
    for (auto const& test : deciderTests(set, decider)) {
        text += text.empty() ? test : " and " + test;
    }
    return text;
}

} // namespace Quorvane::Workshop
