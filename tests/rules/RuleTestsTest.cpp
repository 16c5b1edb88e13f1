// SPDX-License-Identifier: Apache-2.0
//
// What odd numbers of a rule file do: the cases in which the two kinds of tests differ, and those
// in which "not greater" is something else than "less or equal".
#include "rules/format/RuleTests.h"

#include <gtest/gtest.h>
#include <limits>

namespace Quorvane::Testing {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();

AttributeVector s_vector(std::int32_t forged) {
    AttributeVector vector{};
    vector[Attribute::firstForged] = forged;
    return vector;
}

TEST(RuleTests, KnowTheAttributesOfTheTable) {
    EXPECT_TRUE(isAttribute(0));
    EXPECT_TRUE(isAttribute(Attribute::hopBehindFirst));
    for (std::int32_t const other : {-1, 38, lowest}) {
        EXPECT_FALSE(isAttribute(other)) << other;
    }
}

// The tree takes any test but 0 for "differs"; in an elite rule it never holds.
TEST(RuleTests, HoldInTheTreeAndInEliteRules) {
    struct Row {
        std::int32_t m_test;
        std::int32_t m_value;
        bool m_admits;
        bool m_holds;
    };
    for (auto const& [test, value, isAdmitted, isHeld] :
         {Row{0, 1, true, true}, Row{0, 2, false, false}, Row{1, 1, false, false},
          Row{1, 2, true, true}, Row{5, 1, false, false}, Row{5, 2, true, false},
          Row{-1, 1, false, false}, Row{-1, 2, true, false}}) {
        DTNode node{};
        node.attribute = Attribute::firstForged;
        node.test = test;
        node.testValue = value;
        EXPECT_EQ(admits(node, s_vector(1)), isAdmitted) << test << ' ' << value;
        EXPECT_EQ(holds({Attribute::firstForged, test, value}, s_vector(1)), isHeld)
            << test << ' ' << value;
    }
}

TEST(RuleTests, NeverHoldForAttributesThatDoNotExist) {
    for (std::int32_t const attribute : {-1, 38, lowest}) {
        EXPECT_FALSE(holds({attribute, Comparison::equals, 0}, {})) << attribute;
        EXPECT_FALSE(holds({attribute, Comparison::differs, 1}, {})) << attribute;
    }
}

TEST(RuleTests, AreLoadedByTheirUpperBoundsAlone) {
    EXPECT_TRUE(isLoadedCondition({37, 1, 0}));
    EXPECT_TRUE(isLoadedCondition({lowest, lowest, 0}));
    EXPECT_FALSE(isLoadedCondition({38, 0, 0}));
    EXPECT_FALSE(isLoadedCondition({0, 2, 0}));
    EXPECT_TRUE(isLoadedFlag(1));
    EXPECT_TRUE(isLoadedFlag(-1));
    EXPECT_FALSE(isLoadedFlag(2));
    DTNode node{};
    EXPECT_FALSE(isLoadedNode(node)) << "no messages counted";
    node.value1 = 1;
    EXPECT_TRUE(isLoadedNode(node));
    node.attribute = 38;
    EXPECT_FALSE(isLoadedNode(node));
    node.attribute = -1;
    node.test = 2;
    EXPECT_FALSE(isLoadedNode(node));
}

TEST(RuleTests, LeadToNodesOfTheTableOnly) {
    EXPECT_TRUE(isChildIndex(1));
    EXPECT_TRUE(isChildIndex(499));
    for (std::int32_t const other : {0, -1, 500, lowest}) {
        EXPECT_FALSE(isChildIndex(other)) << other;
    }
    EXPECT_FALSE(isCheckedNode(2));
    EXPECT_TRUE(isCheckedNode(3));
    EXPECT_FALSE(canDecide(-1));
    EXPECT_FALSE(canDecide(2));
    EXPECT_TRUE(canDecide(3));
}

TEST(RuleTests, ComparisonsWithWhatIsNotANumberNeverHold) {
    EXPECT_TRUE(isSupported(0.15, 0.15));
    EXPECT_FALSE(isSupported(nan, 0.15));
    EXPECT_FALSE(isSupported(1.0, nan));
    EXPECT_FALSE(isTreeOn(nan));
    EXPECT_FALSE(isTreeOn(95.0));
    EXPECT_TRUE(isTreeOn(94.9));
    for (auto const mode : {SelectMode::first, SelectMode::highest, SelectMode::lowest, 0, 9}) {
        EXPECT_FALSE(replaces(mode, nan, 0.5)) << mode;
        EXPECT_FALSE(replaces(mode, 0.5, nan)) << mode;
    }
    EXPECT_TRUE(replaces(SelectMode::last, nan, nan));
}

TEST(RuleTests, ReplaceOneAnotherByTheSelectMode) {
    EXPECT_TRUE(replaces(SelectMode::highest, 0.9, 0.8));
    EXPECT_FALSE(replaces(SelectMode::highest, 0.9, 0.9));
    EXPECT_TRUE(replaces(SelectMode::lowest, 0.8, 0.9));
    EXPECT_FALSE(replaces(SelectMode::lowest, 0.9, 0.9));
    EXPECT_FALSE(replaces(SelectMode::first, 0.9, 0.8));
    EXPECT_FALSE(replaces(7, 0.9, 0.8));
}

TEST(RuleTests, FireByTypeAndSupport) {
    EliteRecord rule{};
    rule.type = EliteType::adjusting;
    rule.support = nan;
    EXPECT_TRUE(canFire(rule, 0.15));
    rule.type = EliteType::deciding;
    EXPECT_FALSE(canFire(rule, 0.15));
    rule.support = 0.15;
    EXPECT_TRUE(canFire(rule, 0.15));
    rule.type = 3;
    EXPECT_FALSE(canFire(rule, 0.15));
}

TEST(RuleTests, LetTheTreeBeAskedWithoutEliteRulesOrWithTheirLeave) {
    EliteFileHeader header{};
    for (std::int32_t const alsoTree : {0, 2, -1}) {
        header.alsoWalkTree = alsoTree;
        EXPECT_FALSE(letsTreeBeAsked(header)) << alsoTree;
    }
    header.alsoWalkTree = 1;
    EXPECT_TRUE(letsTreeBeAsked(header));
    EXPECT_TRUE(isTreeAsked(false, false, 0.95));
    EXPECT_TRUE(isTreeAsked(true, true, 0.95));
    EXPECT_FALSE(isTreeAsked(true, false, 0.95));
    EXPECT_FALSE(isTreeAsked(false, true, 95.0));
}

} // namespace
} // namespace Quorvane::Testing
