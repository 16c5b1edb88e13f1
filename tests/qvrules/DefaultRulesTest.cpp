// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/HostSettings.h"
#include "rules/check/Checker.h"
#include "rules/format/RuleTests.h"
#include "rules/language/LoadRules.h"
#include "rules/learn/LearnSettings.h"
#include "rules/model/Binary.h"
#include "rules/model/Files.h"
#include "rules/model/RuleNames.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

TEST(DefaultRulesTest, TheyHaveNothingToFind) {
    auto const findings = checkRules(loadRules(QV_DEFAULT_TEXT).m_set, programDefaults());
    for (auto const& finding : findings) {
        ADD_FAILURE() << finding.m_problem;
    }
}

// What is written by hand has a file of its own; whoever changes it makes the whole anew. Branches
// are learned below its last leaf.
TEST(DefaultRulesTest, TheyBeginWithWhatIsWrittenByHand) {
    auto const top = Rules::readFile(QV_TOP_TEXT);
    auto const lastLeaf = top.rfind(": confidence");
    EXPECT_EQ(Rules::readFile(QV_DEFAULT_TEXT).substr(0, lastLeaf), top.substr(0, lastLeaf));
}

// No rule takes another's word back, and whatever says spam has a name and says why.
TEST(DefaultRulesTest, WhatSaysSpamIsWrittenByHandAndSaysWhy) {
    auto const set = loadRules(QV_DEFAULT_TEXT).m_set;
    auto const names = readNames(set.m_names).m_names;
    auto const saysWhy = [&](RuleKey const& key) {
        auto const found = names.find(key);
        return found != names.end() && !found->second.m_sentence.empty();
    };
    for (auto const& rule : set.m_elite->m_rules) {
        EXPECT_EQ(rule.type, EliteType::deciding) << "code " << rule.code;
        EXPECT_TRUE(saysWhy({RuleKey::Kind::decide, rule.code})) << "code " << rule.code;
    }
    for (std::size_t i = treeRoot + 1; i < set.m_nodes.size(); ++i) {
        auto const& node = set.m_nodes[i];
        if (node.confidence >= programDefaults().spamThreshold) {
            EXPECT_TRUE(isLeaf(node)) << "node " << i;
            EXPECT_TRUE(saysWhy({RuleKey::Kind::node, static_cast<std::int32_t>(i)}))
                << "node " << i;
        }
    }
}

// A verdict must not hang on a slow name server.
TEST(DefaultRulesTest, NothingTestsWhatDnsAnswers) {
    auto const set = loadRules(QV_DEFAULT_TEXT).m_set;
    auto const withoutDns = defaultAttributes();
    for (std::size_t i = treeRoot + 1; i < set.m_nodes.size(); ++i) {
        EXPECT_TRUE(withoutDns.at(static_cast<std::size_t>(set.m_nodes[i].attribute)))
            << "node " << i;
    }
    for (auto const& rule : set.m_elite->m_rules) {
        for (auto const& condition : rule.conditions) {
            EXPECT_TRUE(withoutDns.at(static_cast<std::size_t>(condition.attribute)))
                << "code " << rule.code;
        }
    }
}

TEST(DefaultRulesTest, TheBuildCompiledThemAsTheyAre) {
    auto const text = loadRules(QV_DEFAULT_TEXT);
    auto const built = loadRules(QV_DEFAULT_RULES);
    EXPECT_EQ(writeTree(built.m_set), writeTree(text.m_set));
    EXPECT_EQ(writeElite(*built.m_set.m_elite), writeElite(*text.m_set.m_elite));
    EXPECT_EQ(built.m_set.m_readme, text.m_set.m_readme);
}

// A host judges by the tree only if the elite file lets it, and a verdict needs a confidence at the
// programs' thresholds.
TEST(DefaultRulesTest, TheTreeIsConsultedAndCanJudgeBothWays) {
    auto const set = loadRules(QV_DEFAULT_TEXT).m_set;
    EXPECT_EQ(set.m_elite->m_header->alsoWalkTree + 0, 1);
    double lowest = 1.0;
    double highest = 0.0;
    for (std::size_t i = treeRoot + 1; i < set.m_nodes.size(); ++i) {
        double const confidence = set.m_nodes[i].confidence;
        lowest = std::min(lowest, confidence);
        highest = std::max(highest, confidence);
    }
    EXPECT_LE(lowest, 0.05);
    EXPECT_GE(highest, 0.95);
}

} // namespace
} // namespace Quorvane::Testing
