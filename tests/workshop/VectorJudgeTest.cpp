// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/VectorJudge.h"

#include "apps/host/HostSetup.h"
#include "apps/host/RuleLoader.h"
#include "apps/input/Inputs.h"
#include "apps/input/Interrupt.h"
#include "platform/HeaderReader.h"
#include "rules/language/LoadRules.h"
#include "rules/model/RuleError.h"

#include <gtest/gtest.h>
#include <vector>

namespace Quorvane::Testing {

using namespace Workshop;

namespace {

Rules::Verdict s_verdict(DeepHeaderAnswer const& answer) {
    return answer.isSpam()  ? Rules::Verdict::spam
           : answer.isHam() ? Rules::Verdict::ham
                            : Rules::Verdict::none;
}

std::vector<DeepHeaderSettings> s_manySettings() {
    std::vector<DeepHeaderSettings> many;
    for (double const spam : {0.4, 0.9, 0.95, 0.99, 95.0}) {
        for (double const support : {0.0, 0.15, 12.0}) {
            DeepHeaderSettings settings;
            settings.spamThreshold = spam;
            settings.hamThreshold = 0.8;
            settings.minSupport = support;
            settings.walkToLeaf = spam < 0.9 ? 0 : 1;
            many.push_back(settings);
        }
    }
    return many;
}

// Every example message, judged by the whole engine and from its vector alone.
void s_compare(ScanHost const& host, VectorJudge const& judge, int& decided) {
    Interrupt interrupt;
    Inputs inputs({QV_EXAMPLES}, interrupt, HeaderLimits());
    for (InputItem item; inputs.next(item);) {
        auto const record = host.scan(HeaderReader::read(item.m_headers), {}, RecordDepth::result);
        if (!record.isJudged()) {
            continue;
        }
        auto const judged = judge(record.attributes);
        EXPECT_EQ(judged.m_verdict, s_verdict(record.answer)) << item.m_source;
        EXPECT_EQ(judged.m_decider.m_number, record.answer.getNode()) << item.m_source;
        EXPECT_EQ(static_cast<float>(judged.m_confidence), record.answer.confidenceDegree())
            << item.m_source;
        decided += judged.m_decider.m_number != 0 ? 1 : 0;
    }
}

TEST(VectorJudge, SaysWhatAScanOfTheMessageSays) {
    auto const rules = Rules::loadRules(QV_STARTER_TEXT).m_set;
    int decided = 0;
    for (auto const& settings : s_manySettings()) {
        HostSettings hostSettings;
        hostSettings.m_dns = "off";
        hostSettings.m_judging = settings;
        VectorJudge const judge(rules, settings);
        s_compare(*setUpHost(hostSettings, loadedRules(rules)), judge, decided);
    }
    EXPECT_GT(decided, 50);
}

TEST(VectorJudge, ScoreIsTheHighestThresholdThatStillCallsSpam) {
    auto const rules = Rules::loadRules(QV_STARTER_TEXT).m_set;
    DeepHeaderSettings settings;
    settings.hamThreshold = 0.95;
    settings.spamThreshold = 0.5;
    int scored = 0;
    for (std::int32_t reverse = 0; reverse < 3; ++reverse) {
        for (std::int32_t helo = 0; helo < 3; ++helo) {
            Rules::AttributeVector vector{};
            vector.at(Attribute::firstReverseDynamic) = reverse;
            vector.at(Attribute::firstHeloDynamic) = helo;
            auto const score = VectorJudge(rules, settings)(vector).m_score;
            if (score == Rules::noScore) {
                continue;
            }
            ++scored;
            for (double const step : {-1e-9, 1e-9}) {
                auto other = settings;
                other.spamThreshold = score + step;
                EXPECT_EQ(VectorJudge(rules, other)(vector).m_verdict == Rules::Verdict::spam,
                          step < 0.0);
            }
        }
    }
    EXPECT_GT(scored, 3);
}

TEST(VectorJudge, RefusesRulesThatNoHostCouldLoad) {
    Rules::RuleSet rules;
    rules.m_nodes.assign(4, DTNode{});
    rules.m_nodes[3].attribute = 99;
    EXPECT_THROW(VectorJudge(rules, {}), Rules::RuleError);
}

} // namespace
} // namespace Quorvane::Testing
