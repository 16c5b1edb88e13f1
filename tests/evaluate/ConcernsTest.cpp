// SPDX-License-Identifier: Apache-2.0
#include "rules/evaluate/Concerns.h"

#include <gmock/gmock.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// Messages with one confidence, called neither spam nor ham.
struct Sure {
    double m_confidence;
    LabelCounts m_counts;
};

CorpusFigures s_figures(std::vector<Sure> const& mail) {
    CorpusFigures figures;
    std::vector<ScoredCounts> scores;
    for (auto const& [confidence, counts] : mail) {
        scores.push_back({confidence, counts});
        auto& bin = figures.m_reliability.at(static_cast<std::size_t>(10.0 * confidence));
        bin.m_counts += counts;
        bin.m_confidenceSum += confidence * static_cast<double>(counts.total());
    }
    figures.m_roc = RocCurve(std::move(scores));
    return figures;
}

TEST(Concerns, ThereAreNoneWhereConfidencesHold) {
    auto const figures = s_figures({{0.05, {5, 95}}, {0.95, {95, 5}}});
    EXPECT_FALSE(isBelowGuessing(figures));
    EXPECT_EQ(calibrationGap(figures), 0.0);
    EXPECT_THAT(concerns(figures), IsEmpty());
}

TEST(Concerns, RulesThatPutHamAboveSpam) {
    auto const figures = s_figures({{0.45, {80, 60}}, {0.55, {60, 80}}});
    EXPECT_TRUE(isBelowGuessing(figures));
    EXPECT_THAT(concerns(figures), ElementsAre(HasSubstr("ROC area 0.4286 is below 0.5")));
    EXPECT_FALSE(isBelowGuessing(s_figures({{0.5, {10, 10}}})));
}

TEST(Concerns, ConfidencesFarOffTheShareOfSpam) {
    auto const figures = s_figures({{0.15, {900, 100}}, {0.95, {1000, 0}}});
    // The interval of 900 in 1,000 begins at 0.8799; the other tenth is 0.0462 below its own.
    EXPECT_NEAR(calibrationGap(figures), (0.7299 + 0.0462) / 2, 0.0005);
    EXPECT_THAT(concerns(figures),
                ElementsAre(HasSubstr("by 0.39 on average, beyond what chance explains. Most of "
                                      "all, a confidence of 0.150 means 90.00 % spam here.")));
}

TEST(Concerns, FewMessagesProveNothing) {
    EXPECT_THAT(concerns(s_figures({{0.35, {2, 0}}, {0.15, {0, 1}}})), IsEmpty());
}

TEST(Concerns, OneKindOfMailSaysNothingAboutConfidences) {
    EXPECT_THAT(concerns(s_figures({{0.45, {0, 1000}}})), IsEmpty());
    EXPECT_THAT(concerns(s_figures({})), IsEmpty());
}

} // namespace
} // namespace Quorvane::Testing
