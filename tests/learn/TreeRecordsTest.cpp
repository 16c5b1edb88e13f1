// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/TreeRecords.h"

#include "rules/learn/CartGrower.h"
#include "rules/vectors/LearnError.h"
#include "TrainingData.h"

#include <gtest/gtest.h>
#include <limits>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

using Testing::counted;
using Testing::plantedMail;

std::vector<DTNode> s_learn(std::vector<CountedVector> const& mail) {
    LearnSettings settings;
    settings.m_minSupport = 0.0;
    return treeRecords(growTree(mail, settings));
}

// Attribute 9 counts: each value has another share of spam.
std::vector<CountedVector> s_manyValues(std::int32_t values) {
    std::vector<CountedVector> mail;
    for (std::int32_t value = 0; value < values; ++value) {
        auto const spam =
            1000 + static_cast<std::uint64_t>(value) * static_cast<std::uint64_t>(value) * 400;
        mail.push_back(counted({{9, value}}, spam, 20000));
    }
    return mail;
}

TEST(TreeRecords, BeginBehindTwoUnusedRecords) {
    auto const records = s_learn({counted({{5, 1}}, 8, 0), counted({}, 0, 8)});
    ASSERT_EQ(records.size(), 5U);
    EXPECT_EQ(records[0].value1, 0);
    EXPECT_EQ(records[1].value1, 0);
    auto const& root = records[treeRoot];
    EXPECT_EQ(root.isLeaf, 0);
    EXPECT_EQ(root.childCount, 2);
    EXPECT_EQ(root.children[0], 3);
    EXPECT_EQ(root.children[1], 4);
    EXPECT_EQ(root.value1, 16);
    EXPECT_EQ(root.support, 100.0);
}

TEST(TreeRecords, CarryCountsConfidenceAndSupport) {
    auto const records = s_learn({counted({{5, 1}}, 8, 0), counted({}, 4, 8)});
    auto const& spam = records[4];
    EXPECT_EQ(spam.attribute, 5);
    EXPECT_EQ(spam.test, 0);
    EXPECT_EQ(spam.testValue, 1);
    EXPECT_EQ(spam.isLeaf, 1);
    EXPECT_EQ(spam.value1, 8);
    EXPECT_EQ(spam.value2, 8);
    EXPECT_EQ(spam.value3, 0);
    EXPECT_DOUBLE_EQ(spam.confidence, 0.9);
    EXPECT_DOUBLE_EQ(spam.support, 40.0);
}

TEST(TreeRecords, ANodeOfOneAttributeHasAChildAValue) {
    auto const records = s_learn(s_manyValues(5));
    // Five leaves below the root itself, where binary nodes would need nine records.
    ASSERT_EQ(records.size(), 8U);
    EXPECT_EQ(records[treeRoot].childCount, 5);
    std::vector<std::int32_t> values;
    for (std::size_t i = 3; i < records.size(); ++i) {
        EXPECT_EQ(records[i].isLeaf, 1);
        EXPECT_EQ(records[i].attribute, 9);
        EXPECT_EQ(records[i].test, 0);
        values.push_back(records[i].testValue);
    }
    std::sort(values.begin(), values.end());
    EXPECT_EQ(values, (std::vector<std::int32_t>{0, 1, 2, 3, 4}));
}

TEST(TreeRecords, ANodeHasTenChildrenAtMostAndTheRestBelowItsLast) {
    auto const records = s_learn(s_manyValues(14));
    ASSERT_EQ(records.size(), 2U + 1U + 10U + 5U);
    EXPECT_EQ(records[treeRoot].childCount, 10);
    auto const last = static_cast<std::size_t>(records[treeRoot].children[9]);
    EXPECT_EQ(records[last].test, 1);
    EXPECT_EQ(records[last].childCount, 5);
}

TEST(TreeRecords, TheLastChildTakesAllOtherValuesWhenItLearnedFromSeveral) {
    auto const records =
        s_learn({counted({{9, 0}}, 0, 50), counted({{9, 1}}, 20, 0), counted({{9, 2}}, 20, 0)});
    ASSERT_EQ(records.size(), 5U);
    EXPECT_EQ(records[4].test, 1);
    EXPECT_EQ(records[4].testValue, 0);
}

TEST(TreeRecords, CountsBeyond32BitsAreHalvedUntilTheyFit) {
    std::uint64_t const much = std::uint64_t{3} << 40U;
    auto const records = s_learn({counted({{5, 1}}, much, 0), counted({}, 0, 1)});
    auto const& root = records[treeRoot];
    EXPECT_EQ(root.value1, std::int32_t{3} << 29U);
    auto const& ham = records[3];
    EXPECT_EQ(ham.value1, 1); // a value1 of 0 would not load
    EXPECT_EQ(ham.value3, 0);
    EXPECT_DOUBLE_EQ(ham.confidence, 1.0 / 3.0);
    auto const exact = s_learn({counted({{5, 1}}, 2147483646, 0), counted({}, 0, 1)});
    EXPECT_EQ(exact[treeRoot].value1, std::numeric_limits<std::int32_t>::max());
}

TEST(TreeRecords, ATreeWithoutSplitsIsARootThatDecidesNothing) {
    auto const records = s_learn({counted({}, 3, 1)});
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[treeRoot].isLeaf, 0);
    EXPECT_EQ(records[treeRoot].childCount, 0);
}

TEST(TreeRecords, RefuseATreeTooLargeForTheFile) {
    LearnSettings settings;
    settings.m_minSupport = 0.0;
    auto tree = growTree(plantedMail(1, 3000), settings);
    ASSERT_EQ(treeRecords(tree).size(), static_cast<std::size_t>(maxTreeNodes));
    auto const leaf = tree.m_nodes.size() - 1;
    ASSERT_TRUE(tree.m_nodes[leaf].isLeaf());
    tree.m_nodes[leaf].m_attribute = 36;
    tree.m_nodes[leaf].m_equal = tree.m_nodes.size();
    tree.m_nodes[leaf].m_other = tree.m_nodes.size() + 1;
    GrownTree::Node child;
    child.m_counts = {1, 1};
    child.m_parent = leaf;
    tree.m_nodes.insert(tree.m_nodes.end(), 2, child);
    EXPECT_THROW(treeRecords(tree), LearnError);
}

} // namespace
} // namespace Quorvane::Testing
