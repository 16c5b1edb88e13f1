// SPDX-License-Identifier: Apache-2.0
//
// From the record of a scan to what becomes of a message.
#include "apps/milter/Judgement.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

using namespace Milter;

ScanRecord s_spam() {
    ScanRecord record;
    record.verdict.isSpam = true;
    record.verdict.node = 17;
    record.verdict.confidence = 0.97314;
    record.verdict.support = 0.421;
    record.verdict.ips = "192.0.2.55,192.0.2.56";
    return record;
}

ScanRecord s_withLookup(LookupResult result) {
    auto record = s_spam();
    record.lookups.push_back({RecordedLookup::Question::reverseName, "a.example", result});
    return record;
}

TEST(JudgementTest, TakesTheVerdictOfTheScan) {
    auto const judgement = judgementOf(s_spam(), {}, {});
    EXPECT_TRUE(judgement.m_verdict.isSpam);
    EXPECT_FALSE(judgement.m_failure);
    EXPECT_EQ(resultText(judgement),
              "spam; node=17; confidence=0.9731; support=0.421; ips=192.0.2.55,192.0.2.56");
}

TEST(JudgementTest, NamesTheRuleThatDecidedAfterTheNode) {
    Rules::RuleNames const names{{{Rules::RuleKey::Kind::decide, 17}, {"A bot", ""}},
                                 {{Rules::RuleKey::Kind::node, 17}, {"A node", "Why."}}};
    auto record = s_spam();
    record.verdict.decision = Decision::elite;
    EXPECT_EQ(resultText(judgementOf(record, {}, names)),
              "spam; node=17; rule=\"A bot\"; confidence=0.9731; support=0.421; "
              "ips=192.0.2.55,192.0.2.56");
    record.verdict.decision = Decision::tree;
    EXPECT_EQ(ruleText(judgementOf(record, {}, names)), " rule=\"A node\"");
    record.verdict.node = 18;
    EXPECT_EQ(ruleText(judgementOf(record, {}, names)), "");
}

TEST(JudgementTest, NamesNoRuleWhereAFailureTookTheVerdictAway) {
    Rules::RuleNames const names{{{Rules::RuleKey::Kind::decide, 17}, {"A bot", ""}}};
    auto record = s_withLookup(LookupResult::late);
    record.verdict.decision = Decision::elite;
    EXPECT_EQ(resultText(judgementOf(record, {}, names)), "none; error=dns-failure");
}

TEST(JudgementTest, HasNoFiguresWhereNoRuleDecided) {
    EXPECT_EQ(resultText(judgementOf(ScanRecord(), {}, {})), "none; node=0");
}

TEST(JudgementTest, CountsNoVerdictThatRestsOnLookupsThatFailed) {
    for (auto const result : {LookupResult::failed, LookupResult::late}) {
        auto const judgement = judgementOf(s_withLookup(result), {}, {});
        EXPECT_FALSE(judgement.m_verdict.isSpam || judgement.m_verdict.isHam);
        EXPECT_EQ(judgement.m_failure, Failure::dnsFailed);
        EXPECT_EQ(resultText(judgement), "none; error=dns-failure");
    }
}

TEST(JudgementTest, CountsItWhenTheSettingsSaySo) {
    MilterSettings settings;
    settings.m_trustFailedLookups = 1;
    EXPECT_TRUE(judgementOf(s_withLookup(LookupResult::late), settings, {}).m_verdict.isSpam);
}

TEST(JudgementTest, TakesLookupsThatWereAnsweredForWhatTheyAre) {
    for (auto const result : {LookupResult::answered, LookupResult::doesNotExist}) {
        EXPECT_TRUE(judgementOf(s_withLookup(result), {}, {}).m_verdict.isSpam);
    }
}

TEST(JudgementTest, KnowsAScanThatFailed) {
    auto record = s_spam();
    record.failure = "a reason";
    EXPECT_EQ(judgementOf(record, {}, {}).m_failure, Failure::scanFailed);
}

TEST(ActionTest, IsThatOfTheVerdict) {
    MilterSettings settings;
    settings.m_onSpam = VerdictAction::reject;
    settings.m_onHam = VerdictAction::accept;
    settings.m_onNone = VerdictAction::quarantine;
    Judgement judgement;
    EXPECT_EQ(actionOn(judgement, settings).m_action, VerdictAction::quarantine);
    judgement.m_verdict.isSpam = true;
    EXPECT_EQ(actionOn(judgement, settings).m_action, VerdictAction::reject);
    judgement.m_verdict.isSpam = false;
    judgement.m_verdict.isHam = true;
    EXPECT_EQ(actionOn(judgement, settings).m_action, VerdictAction::accept);
}

TEST(ActionTest, IsThatOfTheClassOfAFailure) {
    std::pair<Failure, FailureAction MilterSettings::*> const classes[] = {
        {Failure::noRules, &MilterSettings::m_onNoRules},
        {Failure::scanFailed, &MilterSettings::m_onScanFailure},
        {Failure::dnsFailed, &MilterSettings::m_onDnsFailure},
        {Failure::oddMessage, &MilterSettings::m_onOddMessage},
        {Failure::overload, &MilterSettings::m_onOverload},
    };
    for (auto const& [failure, member] : classes) {
        MilterSettings settings;
        settings.m_onNone = VerdictAction::discard;
        EXPECT_EQ(actionWord(actionOn(failureOf(failure), settings)), "header");
        settings.*member = FailureAction::tempfail;
        EXPECT_EQ(actionWord(actionOn(failureOf(failure), settings)), "tempfail");
        settings.*member = FailureAction::reject;
        EXPECT_EQ(actionWord(actionOn(failureOf(failure), settings)), "reject");
    }
}

} // namespace
} // namespace Quorvane::Testing
