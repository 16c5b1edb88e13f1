// SPDX-License-Identifier: Apache-2.0
#include "rules/evaluate/Evaluation.h"

#include "JudgedVectors.h"
#include "rules/format/AttributeTable.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

// Attribute 5: 1 is called spam, 0 ham, anything else gets a node but no verdict; 9 nothing at all.
JudgedVector s_judge(AttributeVector const& vector) {
    JudgedVector judged;
    if (vector[Attribute::firstHeloDynamic] == 9) {
        return judged;
    }
    judged.m_decider = {false, 10 + vector[Attribute::firstHeloDynamic]};
    judged.m_confidence = vector[Attribute::firstHeloDynamic] == 1   ? 0.97
                          : vector[Attribute::firstHeloDynamic] == 0 ? 0.02
                                                                     : 0.5;
    judged.m_score = judged.m_confidence;
    judged.m_verdict = vector[Attribute::firstHeloDynamic] == 1   ? Verdict::spam
                       : vector[Attribute::firstHeloDynamic] == 0 ? Verdict::ham
                                                                  : Verdict::none;
    return judged;
}

VectorTable s_mail() {
    VectorTableBuilder builder;
    builder.add(vectorOf(1), MailLabel::spam, "a", 80);
    builder.add(vectorOf(1), MailLabel::ham, "a", 1);
    builder.add(vectorOf(0), MailLabel::ham, "a", 90);
    builder.add(vectorOf(0), MailLabel::spam, "b", 4);
    builder.add(vectorOf(2), MailLabel::spam, "b", 6);
    builder.add(vectorOf(9), MailLabel::ham, "b", 5);
    builder.addUnjudged(MailLabel::ham, "b", 15);
    return builder.finish();
}

TEST(Evaluation, CountsVerdictsForEachCorpusAndTogether) {
    auto const evaluation = evaluate(s_mail(), s_judge, {});
    ASSERT_EQ(evaluation.m_corpora.size(), 2U);
    auto const& a = evaluation.m_corpora[0];
    EXPECT_EQ(a.m_name, "a");
    EXPECT_EQ(a.caught().m_hits, 80U);
    EXPECT_EQ(a.caught().m_total, 80U);
    EXPECT_EQ(a.falsePositives().m_hits, 1U);
    EXPECT_EQ(a.falsePositives().m_total, 91U);
    auto const& b = evaluation.m_corpora[1];
    EXPECT_EQ(b.missed().m_hits, 4U);
    EXPECT_EQ(b.m_spamVerdicts.m_none, 6U);
    EXPECT_EQ(b.m_hamVerdicts.m_none, 5U);
    EXPECT_EQ(evaluation.m_together.caught().m_total, 90U);
    EXPECT_EQ(evaluation.m_together.passed().m_hits, 90U);
}

TEST(Evaluation, KeepsMessagesWithoutPublicHopOutOfTheRates) {
    auto const b = evaluate(s_mail(), s_judge, {}).m_corpora[1];
    EXPECT_EQ(b.judgeable().m_hits, 15U);
    EXPECT_EQ(b.judgeable().m_total, 30U);
    EXPECT_EQ(b.falsePositives().m_total, 5U);
}

TEST(Evaluation, SortsConfidencesIntoTenths) {
    auto const together = evaluate(s_mail(), s_judge, {}).m_together;
    EXPECT_EQ(together.m_reliability[9].m_counts, (LabelCounts{80, 1}));
    EXPECT_NEAR(together.m_reliability[9].meanConfidence(), 0.97, 1e-12);
    EXPECT_EQ(together.m_reliability[0].m_counts, (LabelCounts{4, 90}));
    EXPECT_EQ(together.m_reliability[5].m_counts, (LabelCounts{6, 0}));
    EXPECT_EQ(together.m_reliability[1].m_counts, LabelCounts{});
    EXPECT_EQ(together.m_reliability[1].meanConfidence(), 0.0);
}

TEST(Evaluation, BelievesConfidencesWithoutWhatAdjustingRulesAddToThem) {
    auto const adjusted = [](AttributeVector const& vector) {
        auto judged = s_judge(vector);
        judged.m_adjust = -0.4;
        judged.m_score += judged.m_adjust;
        return judged;
    };
    auto const together = evaluate(s_mail(), adjusted, {}).m_together;
    EXPECT_EQ(together.m_reliability[9].m_counts, (LabelCounts{80, 1}));
    EXPECT_NEAR(together.m_reliability[9].meanConfidence(), 0.97, 1e-12);
    EXPECT_NEAR(together.m_roc.points().front().m_threshold, 0.57, 1e-12);
}

TEST(Evaluation, NamesMessagesThatWereJudgedWrongly) {
    SampleSources const samples = {{{vectorOf(1), MailLabel::ham}, {"a/ham:17"}},
                                   {{vectorOf(1), MailLabel::spam}, {"a/spam:1"}},
                                   {{vectorOf(0), MailLabel::spam}, {"b/spam:3", "b/spam:4"}}};
    auto const wrong = evaluate(s_mail(), s_judge, samples).m_deciders.byErrors();
    ASSERT_EQ(wrong.size(), 2U);
    EXPECT_EQ(wrong[0].m_samples, (std::vector<std::string>{"b/spam:3", "b/spam:4"}));
    EXPECT_EQ(wrong[1].m_samples, (std::vector<std::string>{"a/ham:17"}));
}

TEST(Evaluation, OfNothingIsEmpty) {
    auto const evaluation = evaluate(VectorTableBuilder().finish(), s_judge, {});
    EXPECT_TRUE(evaluation.m_corpora.empty());
    EXPECT_EQ(evaluation.m_together.judged().total(), 0U);
}

} // namespace
} // namespace Quorvane::Testing
