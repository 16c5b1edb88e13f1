// SPDX-License-Identifier: Apache-2.0
#include "rules/check/Checker.h"
#include "rules/language/LoadRules.h"
#include "rules/model/Binary.h"

#include <gtest/gtest.h>

namespace Quorvane::Rules {
namespace {

TEST(StarterRulesTest, TheyHaveNothingToFind) {
    auto const findings = checkRules(loadRules(QV_STARTER_TEXT).m_set);
    for (auto const& finding : findings) {
        ADD_FAILURE() << finding.m_problem;
    }
}

TEST(StarterRulesTest, TheBuildCompiledThemAsTheyAre) {
    auto const text = loadRules(QV_STARTER_TEXT);
    auto const built = loadRules(QV_STARTER_RULES);
    EXPECT_EQ(writeTree(built.m_set), writeTree(text.m_set));
    EXPECT_EQ(writeElite(*built.m_set.m_elite), writeElite(*text.m_set.m_elite));
    EXPECT_EQ(built.m_set.m_readme, text.m_set.m_readme);
}

// A host judges by the tree only if the elite file lets it, and a verdict needs a confidence at the
// programs' thresholds.
TEST(StarterRulesTest, TheTreeIsConsultedAndCanJudgeBothWays) {
    auto const set = loadRules(QV_STARTER_TEXT).m_set;
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
} // namespace Quorvane::Rules
