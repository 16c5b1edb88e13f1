// SPDX-License-Identifier: Apache-2.0
#include "rules/evaluate/Difference.h"

#include "JudgedVectors.h"
#include "rules/format/AttributeTable.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

JudgedVector s_old(AttributeVector const& vector) {
    switch (vector[Attribute::firstHeloDynamic]) {
    case 0:
        return judgedBy({false, 10}, Verdict::ham, 0.02);
    case 1:
        return judgedBy({false, 11}, Verdict::none, 0.9);
    case 2:
        return judgedBy({false, 12}, Verdict::none, 0.5);
    default:
        return {};
    }
}

// 0 becomes spam, 1 spam by an adjustment alone, 2 a little surer, anything else is decided now.
JudgedVector s_new(AttributeVector const& vector) {
    switch (vector[Attribute::firstHeloDynamic]) {
    case 0:
        return judgedBy({false, 20}, Verdict::spam, 0.97);
    case 1:
        return judgedBy({false, 11}, Verdict::spam, 0.9, 0.06);
    case 2:
        return judgedBy({false, 22}, Verdict::none, 0.25);
    default:
        return judgedBy({false, 23}, Verdict::none, 0.4);
    }
}

ComparedMail s_mail() {
    VectorTableBuilder sorted;
    sorted.add(vectorOf(0), MailLabel::ham, "a", 7);
    sorted.add(vectorOf(0), MailLabel::spam, "b", 2);
    sorted.add(vectorOf(1), MailLabel::spam, "a", 30);
    sorted.add(vectorOf(2), MailLabel::ham, "a", 4);
    sorted.add(vectorOf(9), MailLabel::ham, "b", 3);
    sorted.addUnjudged(MailLabel::ham, "b", 15);
    VectorTableBuilder unsorted;
    unsorted.add(vectorOf(1), MailLabel::ham, "a", 5);
    unsorted.addUnjudged(MailLabel::ham, "c");
    ComparedMail mail;
    mail.m_sorted = sorted.finish();
    mail.m_unsorted = unsorted.finish();
    mail.m_sortedSamples[{vectorOf(0), MailLabel::ham}] = {"h1", "h2", "h3", "h4"};
    mail.m_sortedSamples[{vectorOf(0), MailLabel::spam}] = {"s1"};
    mail.m_unsortedSamples[{vectorOf(1), MailLabel::ham}] = {"u1"};
    return mail;
}

std::array<std::uint64_t, 3> s_numbers(KindCounts const& counts) {
    return counts.m_values;
}

TEST(Difference, GroupsChangesByTheRulingsBeforeAndAfter) {
    auto const difference = compare(s_mail(), s_old, s_new);
    ASSERT_EQ(difference.m_groups.size(), 2U);
    auto const& most = difference.m_groups[0];
    EXPECT_EQ(most.m_before.m_verdict, Verdict::none);
    EXPECT_EQ(most.m_after.m_verdict, Verdict::spam);
    EXPECT_EQ(most.m_after.m_adjust, 0.06);
    EXPECT_EQ(s_numbers(most.m_counts), (std::array<std::uint64_t, 3>{30, 0, 5}));
    auto const& other = difference.m_groups[1];
    EXPECT_EQ(other.m_before.m_decider.m_number, 10);
    EXPECT_EQ(other.m_after.m_decider.m_number, 20);
    EXPECT_EQ(s_numbers(other.m_counts), (std::array<std::uint64_t, 3>{2, 7, 0}));
    EXPECT_EQ(s_numbers(difference.changed()), (std::array<std::uint64_t, 3>{32, 7, 5}));
}

TEST(Difference, SaysWhatIsBetterAndWhatIsWorse) {
    auto const difference = compare(s_mail(), s_old, s_new);
    EXPECT_EQ(difference.better(), 32U);
    EXPECT_EQ(difference.worse(), 7U);
    auto const back = compare(s_mail(), s_new, s_old);
    EXPECT_EQ(back.better(), 7U);
    EXPECT_EQ(back.worse(), 32U);
}

TEST(Difference, EveryStepOfAVerdictIsBetterForOneLabelAndWorseForTheOther) {
    for (auto const before : {Verdict::ham, Verdict::none, Verdict::spam}) {
        for (auto const after : {Verdict::ham, Verdict::none, Verdict::spam}) {
            EXPECT_EQ(improvement(MailKind::spam, before, after),
                      -improvement(MailKind::ham, before, after));
            EXPECT_EQ(improvement(MailKind::unsorted, before, after), 0);
            EXPECT_EQ(improvement(MailKind::ham, before, after) == 0, before == after);
        }
    }
    EXPECT_EQ(improvement(MailKind::spam, Verdict::ham, Verdict::none), 1);
    EXPECT_EQ(improvement(MailKind::ham, Verdict::none, Verdict::spam), -1);
}

TEST(Difference, CountsVerdictsBeforeAndAfterOfEachKind) {
    auto const difference = compare(s_mail(), s_old, s_new);
    EXPECT_EQ(difference.m_before.of(MailKind::ham).m_ham, 7U);
    EXPECT_EQ(difference.m_after.of(MailKind::ham).m_spam, 7U);
    EXPECT_EQ(difference.m_after.of(MailKind::ham).m_none, 7U);
    EXPECT_EQ(difference.m_after.of(MailKind::spam).m_spam, 32U);
    EXPECT_EQ(difference.m_before.of(MailKind::unsorted).m_none, 5U);
    EXPECT_EQ(s_numbers(difference.m_messages), (std::array<std::uint64_t, 3>{32, 14, 5}));
    EXPECT_EQ(s_numbers(difference.m_unjudged), (std::array<std::uint64_t, 3>{0, 15, 1}));
}

TEST(Difference, SumsUpWhereOnlyTheConfidenceChanges) {
    auto const changes = compare(s_mail(), s_old, s_new).m_confidence;
    EXPECT_EQ(changes.m_up, 0U);
    EXPECT_EQ(changes.m_down, 4U);
    EXPECT_DOUBLE_EQ(changes.mean(), 0.25);
    EXPECT_DOUBLE_EQ(changes.m_largest, -0.25);
    EXPECT_EQ(changes.m_nowDecided, 3U);
    EXPECT_EQ(changes.m_noLongerDecided, 0U);
    EXPECT_EQ(compare(s_mail(), s_new, s_old).m_confidence.m_noLongerDecided, 3U);
}

TEST(Difference, TellsCorporaApart) {
    auto const corpora = compare(s_mail(), s_old, s_new).m_corpora;
    ASSERT_EQ(corpora.size(), 3U);
    EXPECT_EQ(corpora[0].m_name, "a");
    EXPECT_EQ(corpora[0].m_messages, 46U);
    EXPECT_EQ(corpora[0].m_changed, 42U);
    EXPECT_EQ(corpora[1].m_changed, 2U);
    EXPECT_EQ(corpora[2].m_messages, 0U); // nothing of c can be judged
}

TEST(Difference, KeepsAFewSamplesOfEachKind) {
    auto const groups = compare(s_mail(), s_old, s_new).m_groups;
    ASSERT_EQ(groups[0].m_samples.size(), 1U);
    EXPECT_EQ(groups[0].m_samples[0].m_kind, MailKind::unsorted);
    ASSERT_EQ(groups[1].m_samples.size(), Difference::maxSamples + 1);
    EXPECT_EQ(groups[1].m_samples[0].m_source, "h1");
    EXPECT_EQ(groups[1].m_samples[3].m_source, "s1");
}

TEST(Difference, JudgesEachVectorOnce) {
    int judged = 0;
    compare(
        s_mail(),
        [&judged](AttributeVector const& vector) {
            ++judged;
            return s_old(vector);
        },
        s_new);
    EXPECT_EQ(judged, 4);
}

// 0.1 + 0.2 - 0.1 - 0.2 is not 0.
TEST(Difference, TheSameAdjustedConfidenceIsNoChange) {
    auto const judge = [](AttributeVector const&) {
        return judgedBy({false, 21}, Verdict::none, 0.1, 0.2);
    };
    auto const changes = compare(s_mail(), judge, judge).m_confidence;
    EXPECT_EQ(changes.m_up, 0U);
    EXPECT_EQ(changes.m_down, 0U);
}

TEST(Difference, TheSameRulesChangeNothing) {
    auto const difference = compare(s_mail(), s_old, s_old);
    EXPECT_TRUE(difference.m_groups.empty());
    EXPECT_EQ(difference.m_confidence.m_up + difference.m_confidence.m_down, 0U);
    EXPECT_EQ(difference.m_confidence.mean(), 0.0);
}

} // namespace
} // namespace Quorvane::Testing
