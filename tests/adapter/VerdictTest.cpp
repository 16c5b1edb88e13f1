// SPDX-License-Identifier: Apache-2.0
#include "Engine.h"
#include "rules/format/AttributeTable.h"

#include <limits>

namespace Quorvane::Testing {
namespace {

// A query with the given thresholds over a message that never matters here.
class VerdictTest : public EngineTest {
  protected:
    VerdictTest() { m_props.receivers[0].ip = "192.0.2.7"; }

    DeepHeaderAnswerImpl& judge() {
        DeepHeaderAdapter engine;
        auto query = m_message.query();
        engine.getResults(m_answer, query, m_props);
        return m_answer;
    }

    void expectUntouched() {
        EXPECT_EQ(m_answer.m_node, 0);
        EXPECT_EQ(m_answer.m_confidenceDegree, -1.0);
        EXPECT_EQ(m_answer.m_supportDegree, 0.0);
        EXPECT_FALSE(m_answer.m_isSpam);
        EXPECT_FALSE(m_answer.m_isHam);
        EXPECT_EQ(m_answer.m_ips, "");
        EXPECT_EQ(m_answer.m_adjustReason, "");
    }

    DeepHeaderSettings& settings() { return m_message.m_settings; }

    // Thresholds as in real use.
    void useThresholds(double spam, double ham) {
        settings().spamThreshold = spam;
        settings().hamThreshold = ham;
    }

    Message m_message;
    MsgProperties m_props;
    DeepHeaderAnswerImpl m_answer;
};

// --- the tree -----------------------------------------------------------------------------------

TEST_F(VerdictTest, TheDefaultThresholdsNeverWalkTheTree) {
    m_rules.writeTree(treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.99)}));
    judge();
    expectUntouched();
}

TEST_F(VerdictTest, TheTreeIsWalkedBelowASpamThresholdOf95) {
    m_rules.writeTree(treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.5)}));
    settings().spamThreshold = 94.9;
    EXPECT_EQ(judge().m_node, 3);
}

struct TreeCase {
    double m_confidence;
    double m_spamThreshold;
    double m_hamThreshold;
    bool m_isSpam;
    bool m_isHam;
};

TreeCase const treeCases[] = {
    {0.97, 0.95, 0.95, true, false}, {0.95, 0.95, 0.95, true, false},
    {0.1, 0.9, 0.85, false, true},   {0.5, 0.9, 0.85, false, false},
    {0.25, 0.9, 0.75, false, true},  {0.94, 0.95, 0.95, false, false},
    {0.9, 0.9, 0.05, true, false},
};

TEST_F(VerdictTest, ATreeNodeIsSpamOrHamOrNeither) {
    for (auto const& row : treeCases) {
        m_rules.writeTree(treeOf({leaf(Attribute::firstHeloDynamic, 0, row.m_confidence, 1.5)}));
        useThresholds(row.m_spamThreshold, row.m_hamThreshold);
        DeepHeaderAdapter engine;
        DeepHeaderAnswerImpl answer;
        auto query = m_message.query();
        engine.getResults(answer, query, m_props);
        SCOPED_TRACE(row.m_confidence);
        EXPECT_EQ(answer.m_node, 3);
        EXPECT_EQ(answer.m_confidenceDegree, row.m_confidence);
        EXPECT_EQ(answer.m_supportDegree, 1.5);
        EXPECT_EQ(answer.m_isSpam, row.m_isSpam);
        EXPECT_EQ(answer.m_isHam, row.m_isHam);
        EXPECT_EQ(answer.m_ips, "192.0.2.7");
    }
}

TEST_F(VerdictTest, ATreeVerdictCarriesTheNodesCountsAndLeafMark) {
    auto nodes = treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.5)});
    nodes[3].value1 = 2147483647;
    nodes[3].value2 = -1;
    nodes[3].value3 = 7;
    nodes[3].isLeaf = 200;
    m_rules.writeTree(nodes);
    useThresholds(0.95, 0.95);
    auto const& answer = judge();
    EXPECT_EQ(answer.m_nodeValue1, 2147483647);
    EXPECT_EQ(answer.m_nodeValue2, -1);
    EXPECT_EQ(answer.m_nodeValue3, 7);
    EXPECT_EQ(answer.m_nodeFlag, 200);
}

TEST_F(VerdictTest, NoBranchMeansNoDecision) {
    m_rules.writeTree(treeOf({leaf(Attribute::firstHeloDynamic, 1, 0.99)}));
    useThresholds(0.95, 0.95);
    judge();
    expectUntouched();
}

TEST_F(VerdictTest, AWalkThatEndsAtTheRootDecidesNothing) {
    m_rules.writeTree(treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.99, 0.01)}));
    useThresholds(0.95, 0.95);
    judge();
    expectUntouched();
}

TEST_F(VerdictTest, BothAddressesStandInTheAnswerWithACommaBetweenThem) {
    m_rules.writeTree(treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.99)}));
    useThresholds(0.95, 0.95);
    m_props.receivers[1].ip = "192.0.2.8";
    EXPECT_EQ(judge().m_ips, "192.0.2.7,192.0.2.8");
}

// --- elite rules --------------------------------------------------------------------------------

class EliteVerdictTest : public VerdictTest {
  protected:
    void elite(std::int32_t alsoWalkTree, std::vector<EliteNodes> const& nodes) {
        m_rules.writeElite(eliteHeader(static_cast<std::int32_t>(nodes.size()), 1, alsoWalkTree),
                           nodes);
    }
};

TEST_F(EliteVerdictTest, ADecidingRuleWithAdjustmentsReachesTheThreshold) {
    m_rules.writeTree(treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.1)}));
    elite(1, {adjusting('a', 0.2), adjusting('b', 0.2), deciding(77, 0.6, 1.0)});
    useThresholds(0.9, 0.85);
    auto const& answer = judge();
    EXPECT_EQ(answer.m_node, 77);
    EXPECT_TRUE(answer.m_isSpam);
    EXPECT_FALSE(answer.m_isHam);
    EXPECT_EQ(answer.m_confidenceDegree, 0.6);
    EXPECT_EQ(answer.m_supportDegree, 1.0);
    EXPECT_DOUBLE_EQ(answer.m_adjust, 0.4);
    EXPECT_EQ(answer.m_adjustReason, "ab");
    EXPECT_EQ(answer.m_ips, "192.0.2.7");
}

TEST_F(EliteVerdictTest, WithoutAdjustmentsTheTreeIsAskedOnlyWhenTheFileSaysSo) {
    m_rules.writeTree(treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.1)}));
    useThresholds(0.9, 0.85);
    elite(0, {deciding(77, 0.6, 1.0)});
    judge();
    expectUntouched();
    elite(2, {deciding(77, 0.6, 1.0)});
    judge();
    expectUntouched();
    elite(1, {deciding(77, 0.6, 1.0)});
    EXPECT_EQ(judge().m_node, 3);
    EXPECT_TRUE(m_answer.m_isHam);
}

TEST_F(EliteVerdictTest, AdjustmentsApplyToTheTreesVerdictTowardsSpamOnly) {
    m_rules.writeTree(treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.5)}));
    elite(1, {adjusting('u', 0.4)});
    useThresholds(0.9, 0.85);
    auto const& up = judge();
    EXPECT_TRUE(up.m_isSpam);
    EXPECT_EQ(up.m_confidenceDegree, 0.5);
    EXPECT_EQ(up.m_adjust, 0.4);
    EXPECT_EQ(up.m_adjustReason, "u");
}

TEST_F(EliteVerdictTest, AHamVerdictLooksAtTheNodesConfidenceAlone) {
    m_rules.writeTree(treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.3)}));
    elite(1, {adjusting('d', -0.4)});
    useThresholds(0.9, 0.85);
    auto const& answer = judge();
    EXPECT_FALSE(answer.m_isHam);
    EXPECT_FALSE(answer.m_isSpam);
}

TEST_F(EliteVerdictTest, WithoutDecidingRuleThereIsNoEliteVerdictAtAPositiveSupport) {
    elite(0, {adjusting('a', 100.0)});
    judge();
    expectUntouched();
}

TEST_F(EliteVerdictTest, ASupportOfZeroOrLessLetsAdjustmentsDecideAlone) {
    elite(0, {adjusting('a', 100.0)});
    settings().minSupport = 0.0;
    auto const& answer = judge();
    EXPECT_TRUE(answer.m_isSpam);
    EXPECT_EQ(answer.m_node, 0);
    EXPECT_EQ(answer.m_adjust, 100.0);
    EXPECT_EQ(answer.m_ips, "192.0.2.7");
}

TEST_F(EliteVerdictTest, NotANumberDecidesNothing) {
    elite(0, {deciding(77, std::numeric_limits<double>::quiet_NaN(), 1.0)});
    settings().spamThreshold = 0.0;
    judge();
    expectUntouched();
}

TEST_F(EliteVerdictTest, EliteRulesDecideAlsoWhereTheThresholdKeepsTheTreeOut) {
    elite(1, {deciding(77, 96.0, 1.0)});
    EXPECT_EQ(judge().m_node, 77) << "at the default threshold of 95";
}

} // namespace
} // namespace Quorvane::Testing
