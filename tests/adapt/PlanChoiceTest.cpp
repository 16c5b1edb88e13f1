// SPDX-License-Identifier: Apache-2.0
#include "rules/adapt/PlanChoice.h"

#include "Rules.h"
#include "rules/adapt/AdaptedText.h"
#include "rules/language/RuleText.h"
#include "TrainingData.h"

namespace Quorvane::Testing {

using namespace Rules;

namespace {

constexpr char s_rules[] = R"(version 7
elite first also-tree
decide 0.98 support 3 code 1 when first_reverse_dynamic == yes
tree confidence 0.4 { first_helo_dynamic == no: confidence 0.3 support 80 }
)";

// What rule 1 decides is spam; so is what nobody knew: mail without the author's Message-ID.
CountedVectors s_mail(std::uint64_t times) {
    return {counted({{10, 1}, {19, 0}}, 20 * times, 0), counted({{10, 2}, {19, 0}}, 30 * times, 0),
            counted({{10, 2}, {19, 1}}, 0, 90 * times)};
}

AdaptOutcome s_outcome(CountedVectors const& mail) {
    return adaptToSite(rulesOf(s_rules), mail, {}, judgeOf);
}

} // namespace

TEST(PlanChoice, MailThatTheRulesDidNotKnowIsCaught) {
    auto const outcome = s_outcome(s_mail(10));
    EXPECT_TRUE(outcome.isBetter());
    EXPECT_EQ(outcome.m_before.m_calledSpam, (LabelCounts{66, 0}));
    EXPECT_EQ(outcome.m_after.m_calledSpam.m_ham, 0U);
    EXPECT_EQ(outcome.m_after.m_calledSpam.m_spam, outcome.m_after.m_messages.m_spam);
    auto const judge = judgeOf(outcome.m_rules.m_set);
    EXPECT_EQ(judge(vectorOf({{10, 2}, {19, 0}})).m_verdict, Verdict::spam);
}

TEST(PlanChoice, FiguresAreOfAThirdThatWasKeptAside) {
    auto const outcome = s_outcome(s_mail(10));
    EXPECT_EQ(outcome.m_before.m_messages, outcome.m_after.m_messages);
    EXPECT_EQ(outcome.m_before.m_messages, (LabelCounts{166, 300}));
}

TEST(PlanChoice, NothingIsLearnedFromTheMailThatIsKeptAside) {
    // Every third ham message goes aside: here all that rule 1 decides. Whoever has seen them
    // leaves the rule out.
    CountedVectors mail{counted({{10, 2}, {19, 0}}, 60, 0)};
    for (std::int32_t i = 0; i < 8; ++i) {
        mail.push_back(counted({{10, 2}, {19, 1}, {9, i}}, 0, 2));
        mail.push_back(counted({{10, 1}, {19, 1}, {9, i}}, 0, 1));
    }
    auto const outcome = s_outcome(mail);
    EXPECT_EQ(outcome.m_before.m_calledSpam.m_ham, 8U);
    EXPECT_EQ(outcome.m_after.m_calledSpam.m_ham, 8U);
    EXPECT_FALSE(outcome.m_rules.m_set.m_elite.has_value()); // made of all the mail
}

TEST(PlanChoice, RulesThatAreNoBetterAreKept) {
    // Nothing here tells spam from ham.
    auto const outcome = s_outcome({counted({{10, 2}, {19, 0}}, 50, 50)});
    EXPECT_FALSE(outcome.isBetter());
}

TEST(PlanChoice, RulesThatLoseMoreAreNotBetterHoweverMuchTheyCatch) {
    AdaptOutcome outcome;
    outcome.m_before = {{1000, 2000}, {500, 2}, 0.9, {400, 2}};
    outcome.m_after = {{1000, 2000}, {900, 3}, 0.99, {900, 2}};
    EXPECT_FALSE(outcome.isBetter());
    outcome.m_after.m_calledSpam.m_ham = 2; // one message in a thousand
    EXPECT_TRUE(outcome.isBetter());
    outcome.m_after.m_calledSpam = {400, 1};
    EXPECT_TRUE(outcome.isBetter());
    outcome.m_after.m_calledSpam = {400, 2};
    EXPECT_FALSE(outcome.isBetter());
}

TEST(PlanChoice, TheSameMailGivesTheSameText) {
    auto const text = [](AdaptOutcome const& outcome) {
        return adaptedComment(s_mail(3), outcome) + ruleText(outcome.m_rules.m_set);
    };
    auto const first = text(s_outcome(s_mail(3)));
    EXPECT_EQ(first, text(s_outcome(s_mail(3))));
    EXPECT_TRUE(first.starts_with("# Learned from 150 spam and 270 ham messages of one site"));
    EXPECT_NE(first.find("#   decide 1: 60 spam and 0 ham; 0.9800 before, 0.9"), std::string::npos)
        << first;
    rulesOf(first);
}

TEST(PlanChoice, EveryPlanIsAnnounced) {
    std::size_t told = 0;
    std::size_t announced = 0;
    adaptToSite(rulesOf(s_rules), s_mail(2), {}, judgeOf, [&](std::size_t plan, std::size_t plans) {
        EXPECT_EQ(plan, told++);
        announced = plans;
    });
    EXPECT_EQ(told, announced);
    EXPECT_GT(told, 1U);
}

} // namespace Quorvane::Testing
