// SPDX-License-Identifier: Apache-2.0
#include "rules/evaluate/Roc.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

TEST(Roc, CountsFromTheHighestScoreDown) {
    RocCurve const roc({{0.2, {1, 8}}, {0.9, {5, 0}}, {0.5, {3, 1}}, {0.9, {0, 1}}});
    ASSERT_EQ(roc.points().size(), 3U);
    EXPECT_EQ(roc.points()[0].m_threshold, 0.9);
    EXPECT_EQ(roc.points()[0].m_called, (LabelCounts{5, 1}));
    EXPECT_EQ(roc.points()[1].m_called, (LabelCounts{8, 2}));
    EXPECT_EQ(roc.points()[2].m_called, (LabelCounts{9, 10}));
}

TEST(Roc, AreaIsTheShareOfPairsInTheRightOrder) {
    // Compared pair by pair.
    std::mt19937 random(3);
    for (int round = 0; round < 50; ++round) {
        std::vector<ScoredCounts> scores;
        for (int i = 0; i < 8; ++i) {
            auto const score = static_cast<double>(random() % 5);
            scores.push_back({score == 0.0 ? noScore : score, {random() % 4, random() % 4}});
        }
        double won = 0.0;
        double pairs = 0.0;
        for (auto const& a : scores) {
            for (auto const& b : scores) {
                auto const weight = static_cast<double>(a.m_counts.m_spam * b.m_counts.m_ham);
                pairs += weight;
                won += a.m_score > b.m_score ? weight : 0.0;
                won += a.m_score == b.m_score ? weight / 2.0 : 0.0;
            }
        }
        EXPECT_NEAR(RocCurve(scores).area(), pairs == 0.0 ? 0.5 : won / pairs, 1e-12);
    }
}

TEST(Roc, UndecidedMessagesAreCalledSpamAtNoThreshold) {
    RocCurve const roc({{0.5, {2, 0}}, {noScore, {8, 10}}});
    ASSERT_EQ(roc.points().size(), 1U);
    EXPECT_EQ(roc.total(), (LabelCounts{10, 10}));
    EXPECT_DOUBLE_EQ(roc.area(), 0.2 + 0.8 / 2);
}

TEST(Roc, FindsTheMostSpamForAFalsePositiveRate) {
    RocCurve const roc({{0.99, {50, 0}}, {0.9, {20, 1}}, {0.8, {10, 4}}, {0.1, {20, 995}}});
    EXPECT_EQ(roc.atFalsePositives(0.0).m_threshold, 0.99);
    EXPECT_EQ(roc.atFalsePositives(0.001).m_called, (LabelCounts{70, 1}));
    EXPECT_EQ(roc.atFalsePositives(0.0049).m_called, (LabelCounts{70, 1}));
    EXPECT_EQ(roc.atFalsePositives(0.005).m_called, (LabelCounts{80, 5}));
    EXPECT_EQ(roc.atFalsePositives(1.0).m_called, (LabelCounts{100, 1000}));
}

TEST(Roc, SaysWhenNoThresholdIsHighEnough) {
    RocCurve const roc({{0.99, {50, 10}}, {0.5, {50, 10}}});
    auto const point = roc.atFalsePositives(0.1);
    EXPECT_TRUE(std::isinf(point.m_threshold));
    EXPECT_EQ(point.m_called, LabelCounts{});
}

TEST(Roc, OfNothingIsEmpty) {
    RocCurve const roc({});
    EXPECT_TRUE(roc.points().empty());
    EXPECT_EQ(roc.area(), 0.5);
}

} // namespace
} // namespace Quorvane::Testing
