// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/DeciderText.h"

#include "rules/format/RuleTests.h"
#include "rules/language/RuleText.h"
#include "rules/language/Sentences.h"

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

// A rule is not about one message: the sentences have no names.
DeciderTest s_test(std::int32_t attribute, std::int32_t test, std::int32_t value) {
    return {Rules::conditionText({attribute, test, value}),
            Rules::fillSentence(Rules::testSentence(attribute, test, value), {})};
}

// In a damaged set a node may be its own ancestor: a path is never longer than the table.
std::vector<DeciderTest> s_pathTo(std::vector<DTNode> const& nodes, std::int32_t number) {
    std::vector<DeciderTest> path;
    for (int step = 0; step < treeTableSize && canDecide(number) &&
                       static_cast<std::size_t>(number) < nodes.size();
         ++step) {
        auto const& node = nodes[static_cast<std::size_t>(number)];
        path.push_back(s_test(node.attribute, node.test, node.testValue));
        number = static_cast<std::int32_t>(s_parentOf(nodes, number));
    }
    std::reverse(path.begin(), path.end());
    return path;
}

std::vector<DeciderTest> s_testsOf(EliteNodes const& rule) {
    std::vector<DeciderTest> tests;
    for (auto const& condition : rule.conditions) {
        tests.push_back(s_test(condition.attribute, condition.test, condition.value));
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

std::vector<DeciderTest> deciderTests(Rules::RuleSet const& set, Rules::Decider const& decider) {
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
        text += (text.empty() ? "" : " and ") + test.m_text;
    }
    return text;
}

} // namespace Quorvane::Workshop
