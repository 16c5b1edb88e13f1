// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/Pruning.h"

#include "rules/learn/CartGrower.h"
#include "rules/learn/Impurity.h"
#include "TrainingData.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

using Testing::counted;
using Testing::plantedMail;

LearnSettings s_settings() {
    LearnSettings settings;
    settings.m_minSupport = 0.0;
    settings.m_impurity = ImpurityKind::gini;
    return settings;
}

double s_impurity(GrownTree const& tree) {
    double sum = 0.0;
    for (auto const& node : tree.m_nodes) {
        sum += node.isLeaf() ? summedImpurity(ImpurityKind::gini, node.m_counts) : 0.0;
    }
    return sum / static_cast<double>(tree.m_nodes[0].m_counts.total());
}

// 40 messages: attribute 5 tells 20 spam from 16 ham and 4 spam, attribute 7 those apart.
std::vector<CountedVector> s_twoSteps() {
    return {counted({{5, 1}}, 20, 0), counted({{5, 0}, {7, 1}}, 4, 0), counted({{7, 0}}, 0, 16)};
}

TEST(Pruning, FindsTheWeakestLinksByHand) {
    auto const tree = growTree(s_twoSteps(), s_settings());
    ASSERT_EQ(tree.leafCount(), 3U);
    auto const links = weakestLinks(tree, ImpurityKind::gini);
    // Gini sums: root 2*24*16/40 = 19.2; the node of 4 and 16: 2*4*16/20 = 6.4; leaves 0.
    // The inner node earns 6.4/40 = 0.16 for its one leaf more; the root's branch
    // 19.2/40/2 = 0.24 a leaf, and 12.8/40 = 0.32 once the inner node is cut.
    auto const inner = tree.m_nodes[tree.m_nodes[0].m_equal].isLeaf() ? tree.m_nodes[0].m_other
                                                                      : tree.m_nodes[0].m_equal;
    EXPECT_NEAR(links[inner], 0.16, 1e-12);
    EXPECT_NEAR(links[0], 0.32, 1e-12);
    EXPECT_EQ(prunedTree(tree, links, 0.15).leafCount(), 3U);
    EXPECT_EQ(prunedTree(tree, links, 0.17).leafCount(), 2U);
    EXPECT_EQ(prunedTree(tree, links, 0.33).leafCount(), 1U);
}

TEST(Pruning, GoesFromTheWholeTreeToTheRootInSmallerAndSmallerTrees) {
    auto const tree = growTree(plantedMail(11), s_settings());
    auto const links = weakestLinks(tree, ImpurityKind::gini);
    auto const steps = pruningSteps(links);
    ASSERT_GT(steps.size(), 10U);
    EXPECT_EQ(prunedTree(tree, links, steps.front()).leafCount(), tree.leafCount());
    EXPECT_EQ(prunedTree(tree, links, steps.back()).leafCount(), 1U);
    for (std::size_t i = 1; i < steps.size(); ++i) {
        auto const larger = prunedTree(tree, links, steps[i - 1]);
        auto const smaller = prunedTree(tree, links, steps[i]);
        EXPECT_LT(smaller.leafCount(), larger.leafCount());
        EXPECT_GT(s_impurity(smaller), s_impurity(larger));
    }
}

TEST(Pruning, EachStepIsTheCheapestTreeAtItsAlpha) {
    auto const tree = growTree(plantedMail(12, 120), s_settings());
    auto const links = weakestLinks(tree, ImpurityKind::gini);
    auto const steps = pruningSteps(links);
    auto const cost = [&](GrownTree const& pruned, double alpha) {
        return s_impurity(pruned) + alpha * static_cast<double>(pruned.leafCount());
    };
    for (auto const alpha : steps) {
        auto const chosen = cost(prunedTree(tree, links, alpha), alpha);
        for (auto const other : steps) {
            EXPECT_LE(chosen, cost(prunedTree(tree, links, other), alpha) + 1e-12);
        }
    }
}

TEST(Pruning, NeverCutsANodeLaterThanWhatHangsBelowIt) {
    auto const tree = growTree(plantedMail(13), s_settings());
    auto const links = weakestLinks(tree, ImpurityKind::gini);
    for (std::size_t node = 1; node < links.size(); ++node) {
        EXPECT_LE(links[node], links[tree.m_nodes[node].m_parent]);
    }
}

TEST(Pruning, KeepsParentsAndChildrenTogether) {
    auto const tree = growTree(plantedMail(14), s_settings());
    auto const links = weakestLinks(tree, ImpurityKind::gini);
    auto const steps = pruningSteps(links);
    auto const pruned = prunedTree(tree, links, steps[steps.size() / 2]);
    ASSERT_GT(pruned.m_nodes.size(), 3U);
    for (std::size_t i = 0; i < pruned.m_nodes.size(); ++i) {
        auto const& node = pruned.m_nodes[i];
        if (!node.isLeaf()) {
            EXPECT_EQ(pruned.m_nodes[node.m_equal].m_parent, i);
            EXPECT_EQ(pruned.m_nodes[node.m_other].m_parent, i);
            EXPECT_EQ(node.m_counts - pruned.m_nodes[node.m_equal].m_counts,
                      pruned.m_nodes[node.m_other].m_counts);
        }
    }
}

} // namespace
} // namespace Quorvane::Testing
