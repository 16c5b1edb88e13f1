// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/CorpusFolds.h"

#include "rules/learn/CartGrower.h"
#include "rules/vectors/LearnError.h"
#include "TrainingData.h"

#include <gtest/gtest.h>
#include <string>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

using Testing::counted;
using Testing::plantedMail;
using Testing::vectorOf;

void s_add(VectorTableBuilder& builder, CountedVector const& row, std::string const& corpus) {
    builder.add(row.m_vector, MailLabel::spam, corpus, row.m_counts.m_spam);
    builder.add(row.m_vector, MailLabel::ham, corpus, row.m_counts.m_ham);
}

// Three sites. Attribute 5 tells spam everywhere; attribute 7 tells it at each site in another way,
// and one site has most of the mail.
VectorTable s_sites() {
    VectorTableBuilder builder;
    std::int32_t site = 0;
    for (char const* const corpus : {"a", "b", "c"}) {
        for (std::int32_t const dynamic : {0, 1}) {
            for (std::int32_t local = 0; local < 3; ++local) {
                bool const isLocalSpam = local == site;
                std::uint64_t const size = site == 0 ? 10 : 1;
                auto const rare = isLocalSpam ? 30U : 2U;
                CountedVector row{vectorOf({{5, dynamic}, {7, local}}), {}};
                row.m_counts.m_spam = size * (dynamic == 1 ? 90U : rare);
                row.m_counts.m_ham = size * (dynamic == 1 ? 12U : 90U);
                s_add(builder, row, corpus);
            }
        }
        ++site;
    }
    return builder.finish();
}

LearnSettings s_settings() {
    LearnSettings settings;
    settings.m_minSupport = 0.0;
    return settings;
}

TEST(BrierScore, IsTheMeanSquaredErrorOfTheConfidence) {
    auto const tree = growTree({counted({{5, 1}}, 8, 0), counted({}, 0, 8)}, s_settings());
    // Confidences 0.9 and 0.1.
    EXPECT_NEAR(brierScore(tree, {counted({{5, 1}}, 3, 1)}), (3 * 0.01 + 0.81) / 4, 1e-12);
    EXPECT_NEAR(brierScore(tree, {counted({}, 1, 0)}), 0.81, 1e-12);
    EXPECT_EQ(brierScore(tree, {}), 0.0);
}

TEST(CorpusFolds, PruneAwayWhatHoldsAtOneSiteOnly) {
    auto const table = s_sites();
    auto const choice = crossValidate(table, s_settings(), PruningRule::minimum);
    EXPECT_GT(choice.m_steps.front().m_leaves, 2U);
    EXPECT_EQ(choice.m_steps[choice.m_chosen].m_leaves, 2U);
    EXPECT_EQ(choice.m_steps.back().m_leaves, 1U);
    EXPECT_LT(choice.m_steps[choice.m_chosen].risk(), choice.m_steps.front().risk());
    EXPECT_LT(choice.m_steps[choice.m_chosen].risk(), choice.m_steps.back().risk());
}

TEST(CorpusFolds, LeaveOutEachCorpusOnce) {
    std::vector<std::string> left;
    crossValidate(s_sites(), s_settings(), PruningRule::minimum,
                  [&](std::size_t fold, std::size_t folds, std::string_view corpus) {
                      EXPECT_EQ(fold, left.size());
                      EXPECT_EQ(folds, 3U);
                      left.emplace_back(corpus);
                  });
    EXPECT_EQ(left, (std::vector<std::string>{"a", "b", "c"}));
}

TEST(CorpusFolds, NeedTwoCorpora) {
    VectorTableBuilder builder;
    s_add(builder, counted({}, 5, 5), "alone");
    builder.addUnjudged(MailLabel::ham, "without vectors", 100);
    EXPECT_THROW(crossValidate(builder.finish(), s_settings(), PruningRule::minimum), LearnError);
}

TEST(PruningRules, TakeTheLeastRiskOrTheSmallestTreeWithinOneStandardError) {
    // Two sites of very different difficulty. Differences from the best step: 0.01 and 0.03 (mean
    // 0.02, standard error 0.01) and 0.005 and -0.001 (0.002, 0.003).
    std::vector<PruningStep> const steps = {{0.0, 40, {0.13, 0.53}}, {0.1, 30, {0.1, 0.5}},
                                            {0.2, 20, {0.1, 0.5}},   {0.3, 9, {0.105, 0.499}},
                                            {0.4, 3, {0.11, 0.53}},  {0.5, 1, {0.4, 0.9}}};
    EXPECT_DOUBLE_EQ(steps[0].risk(), 0.33);
    EXPECT_EQ(choosePruning(steps, PruningRule::minimum), 2U);
    EXPECT_EQ(choosePruning(steps, PruningRule::oneStandard), 3U);
    EXPECT_EQ(choosePruning({{0.0, 1, {0.2, 0.3}}}, PruningRule::oneStandard), 0U);
}

} // namespace
} // namespace Quorvane::Testing
