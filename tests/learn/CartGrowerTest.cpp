// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/CartGrower.h"

#include "rules/learn/Impurity.h"
#include "rules/learn/TreeRecords.h"
#include "rules/vectors/LearnError.h"
#include "TrainingData.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <random>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

using Testing::counted;
using Testing::plantedMail;

LearnSettings s_settings(double minSupport = 0.0) {
    LearnSettings settings;
    settings.m_minSupport = minSupport;
    return settings;
}

bool s_sameBytes(std::vector<DTNode> const& a, std::vector<DTNode> const& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(DTNode)) == 0;
}

TEST(Impurity, MatchesTheTextbook) {
    EXPECT_DOUBLE_EQ(summedImpurity(ImpurityKind::entropy, {5, 5}), 10.0);
    EXPECT_DOUBLE_EQ(summedImpurity(ImpurityKind::gini, {5, 5}), 5.0);
    // 9 and 5: 0.940286 bits a message, Gini 0.459184.
    EXPECT_NEAR(summedImpurity(ImpurityKind::entropy, {9, 5}) / 14, 0.940286, 1e-6);
    EXPECT_NEAR(summedImpurity(ImpurityKind::gini, {9, 5}) / 14, 0.459184, 1e-6);
    EXPECT_EQ(summedImpurity(ImpurityKind::entropy, {7, 0}), 0.0);
    EXPECT_EQ(summedImpurity(ImpurityKind::gini, {0, 0}), 0.0);
}

TEST(Impurity, SmoothsConfidencesByLaplacesRule) {
    EXPECT_DOUBLE_EQ(smoothedConfidence({0, 0}), 0.5);
    EXPECT_DOUBLE_EQ(smoothedConfidence({8, 0}), 0.9);
    EXPECT_DOUBLE_EQ(smoothedConfidence({0, 98}), 0.01);
}

TEST(CartGrower, SplitsWhereMostImpurityGoes) {
    // Attribute 5 separates 18 of 20, attribute 7 separates 12 of 20.
    auto const tree = growTree({counted({{5, 1}, {7, 1}}, 6, 1), counted({{5, 1}, {7, 0}}, 3, 0),
                                counted({{5, 0}, {7, 1}}, 1, 4), counted({{5, 0}, {7, 0}}, 0, 5)},
                               s_settings());
    auto const& root = tree.m_nodes[0];
    EXPECT_EQ(root.m_attribute, 5U);
    EXPECT_EQ(root.m_value, 0);
    EXPECT_EQ(root.m_counts, (LabelCounts{10, 10}));
    EXPECT_EQ(tree.m_nodes[root.m_equal].m_counts, (LabelCounts{1, 9}));
    EXPECT_EQ(tree.m_nodes[root.m_other].m_counts, (LabelCounts{9, 1}));
}

TEST(CartGrower, TiesGoToTheLowerAttributeAndValue) {
    auto const tree = growTree({counted({{9, 2}, {20, 2}}, 5, 0), counted({{9, 4}, {20, 4}}, 0, 5)},
                               s_settings());
    EXPECT_EQ(tree.m_nodes[0].m_attribute, 9U);
    EXPECT_EQ(tree.m_nodes[0].m_value, 2);
}

TEST(CartGrower, LeavesPureAndUninformativeMailAlone) {
    EXPECT_EQ(
        growTree({counted({{5, 1}}, 5, 0), counted({{5, 0}}, 7, 0)}, s_settings()).m_nodes.size(),
        1U);
    EXPECT_EQ(
        growTree({counted({{5, 1}}, 3, 1), counted({{5, 0}}, 9, 3)}, s_settings()).m_nodes.size(),
        1U);
}

TEST(CartGrower, TheSameMailInAnyOrderGivesTheSameTreeToTheByte) {
    auto mail = plantedMail(1);
    auto const records = treeRecords(growTree(mail, s_settings(0.15)));
    EXPECT_GT(records.size(), 20U);
    std::mt19937 random(99);
    for (int round = 0; round < 10; ++round) {
        std::shuffle(mail.begin(), mail.end(), random);
        EXPECT_TRUE(s_sameBytes(records, treeRecords(growTree(mail, s_settings(0.15)))));
    }
}

TEST(CartGrower, CountsWeighAsMuchAsRepeatedRows) {
    auto const mail = plantedMail(2, 60);
    std::vector<CountedVector> repeated;
    for (auto const& row : mail) {
        repeated.insert(repeated.end(), row.m_counts.m_spam, {row.m_vector, {1, 0}});
        repeated.insert(repeated.end(), row.m_counts.m_ham, {row.m_vector, {0, 1}});
    }
    for (auto const kind : {ImpurityKind::entropy, ImpurityKind::gini}) {
        auto settings = s_settings(0.5);
        settings.m_impurity = kind;
        EXPECT_TRUE(s_sameBytes(treeRecords(growTree(mail, settings)),
                                treeRecords(growTree(repeated, settings))));
    }
}

TEST(CartGrower, KeepsTheNodeBudgetAndUsesIt) {
    auto const mail = plantedMail(3, 3000);
    for (int const budget : {1, 2, 3, 4, 10, 57, 200, maxLearnedNodes}) {
        auto settings = s_settings();
        settings.m_maxNodes = budget;
        auto const tree = growTree(mail, settings);
        EXPECT_LE(tree.writtenSize(), static_cast<std::size_t>(budget));
        EXPECT_GE(tree.writtenSize(), static_cast<std::size_t>(budget) - 1);
        EXPECT_EQ(treeRecords(tree).size(), tree.writtenSize() + treeRoot);
    }
}

TEST(CartGrower, KeepsTheMinimumSupportInEveryNode) {
    for (double const support : {0.15, 1.0, 7.5}) {
        auto const records = treeRecords(growTree(plantedMail(4), s_settings(support)));
        ASSERT_GT(records.size(), 5U);
        for (std::size_t i = treeRoot; i < records.size(); ++i) {
            EXPECT_GE(records[i].support, support);
        }
    }
}

TEST(CartGrower, AMinimumGainMakesSmallerTrees) {
    auto settings = s_settings();
    auto const free = growTree(plantedMail(5), settings).leafCount();
    settings.m_minGain = 0.01;
    auto const thrifty = growTree(plantedMail(5), settings).leafCount();
    EXPECT_LT(thrifty, free);
    EXPECT_GT(thrifty, 1U);
}

TEST(CartGrower, NeverTestsAnExcludedAttribute) {
    auto settings = s_settings();
    selectAttribute(settings.m_attributes, "first_helo_dynamic", false);
    for (auto const& node : growTree(plantedMail(6), settings).m_nodes) {
        EXPECT_TRUE(node.isLeaf() || node.m_attribute != Attribute::firstHeloDynamic);
    }
    // Only answered look-ups separate this mail.
    std::vector<CountedVector> const resolved = {counted({{3, 1}, {14, 1}, {29, 1}}, 0, 50),
                                                 counted({}, 50, 0)};
    EXPECT_EQ(growTree(resolved, s_settings()).m_nodes.size(), 1U);
    selectAttribute(settings.m_attributes, "first_forged", true);
    EXPECT_EQ(growTree(resolved, settings).m_nodes[0].m_attribute, Attribute::firstForged);
    EXPECT_THROW(selectAttribute(settings.m_attributes, "first_helo", false), LearnError);
}

TEST(CartGrower, RefusesWhatCannotBeLearned) {
    EXPECT_THROW(growTree({}, s_settings()), LearnError);
    for (int const budget : {-1, 0, maxLearnedNodes + 1}) {
        auto settings = s_settings();
        settings.m_maxNodes = budget;
        EXPECT_THROW(growTree(plantedMail(1), settings), LearnError);
    }
    for (double const support : {-0.1, 100.1, std::nan("")}) {
        EXPECT_THROW(growTree(plantedMail(1), s_settings(support)), LearnError);
    }
}

} // namespace
} // namespace Quorvane::Testing
