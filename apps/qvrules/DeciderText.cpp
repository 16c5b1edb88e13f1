// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Evaluate.h"
#include "rules/language/RuleText.h"

#include <algorithm>

namespace Quorvane::RulesApp {

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
std::string s_pathTo(std::vector<DTNode> const& nodes, std::int32_t number) {
    std::string path;
    for (int step = 0; step < treeTableSize && number > treeRoot &&
                       static_cast<std::size_t>(number) < nodes.size();
         ++step) {
        auto const& node = nodes[static_cast<std::size_t>(number)];
        auto const test = Rules::conditionText(node.attribute, node.test, node.testValue);
        path.insert(0, path.empty() ? test : test + " and ");
        number = static_cast<std::int32_t>(s_parentOf(nodes, number));
    }
    return path;
}

std::string s_conditionsOf(EliteNodes const& rule) {
    std::string text;
    for (auto const& condition : rule.conditions) {
        text += text.empty() ? "" : " and ";
        text += Rules::conditionText(condition.attribute, condition.test, condition.value);
    }
    return text;
}

} // namespace

std::string deciderConditions(Rules::RuleSet const& set, Rules::Decider const& decider) {
    if (!decider.m_isElite) {
        return s_pathTo(set.m_nodes, decider.m_number);
    }
    if (set.m_elite) {
        for (auto const& rule : set.m_elite->m_rules) {
            if (rule.type == EliteType::deciding && rule.code == decider.m_number) {
                return s_conditionsOf(rule);
            }
        }
    }
    return {};
}

} // namespace Quorvane::RulesApp
