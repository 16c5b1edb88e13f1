// SPDX-License-Identifier: Apache-2.0
#include "adapter/DeepHeaderAdapter.h"
#include "rules/check/Checker.h"
#include "rules/check/EliteRun.h"
#include "rules/format/AttributeTable.h"
#include "rules/language/Compiler.h"
#include "rules/language/RuleText.h"
#include "SmallVectors.h"
#include "support/EliteHeader.h"
#include "support/RuleFolder.h"

#include <limits>
#include <memory>
#include <set>

namespace Quorvane::Testing {
namespace {

// "2 by 1 | 5 by 1 3": the shadowed rules and what shadows them.
std::string s_shadowed(RuleSet const& set, DeepHeaderSettings const& settings) {
    std::string text;
    for (auto const& rule : Rules::eliteRun(set, settings).m_rules) {
        if (!rule.m_shadows.empty()) {
            text += (text.empty() ? "" : " | ") + std::to_string(rule.m_number) + " by";
            for (auto const number : rule.m_shadows) {
                text += ' ' + std::to_string(number);
            }
        }
    }
    return text;
}

struct ShadowCase {
    char const* m_name;
    char const* m_text;
    char const* m_shadowed;
};

class EliteShadowsTest : public testing::TestWithParam<ShadowCase> {};

TEST_P(EliteShadowsTest, FindsWhatIsNeverUsed) {
    auto const compiled = Rules::compileRules(std::string("version 1\n") + GetParam().m_text);
    ASSERT_TRUE(compiled.m_errors.empty());
    EXPECT_EQ(s_shadowed(compiled.m_set, DeepHeaderSettings()), GetParam().m_shadowed);
}

INSTANTIATE_TEST_SUITE_P(
    First, EliteShadowsTest,
    testing::Values(
        ShadowCase{"ALaterRuleWithMoreConditions",
                   "elite first\ndecide 1 code 1 when 15 == yes\n"
                   "decide 1 code 2 when 15 == yes and 5 == 1",
                   "2 by 1"},
        ShadowCase{"ALaterRuleThatEnginesDoNotRead",
                   "elite first count 1\ndecide 1 code 1 when 15 == yes\n"
                   "decide 1 code 2 when 15 == yes",
                   ""},
        ShadowCase{"AnEarlierRuleWithMoreConditions",
                   "elite first\ndecide 1 code 1 when 15 == yes and 5 == 1\n"
                   "decide 1 code 2 when 15 == yes",
                   ""},
        ShadowCase{"EqualYesImpliesNotNo",
                   "elite first\ndecide 1 code 1 when 5 != no\ndecide 1 code 2 when 5 == yes",
                   "2 by 1"},
        ShadowCase{"NotNoIsYesWhereThereIsNothingElse",
                   "elite first\ndecide 1 code 1 when 15 == yes\ndecide 1 code 2 when 15 != no",
                   "2 by 1"},
        ShadowCase{"NotNoIsMoreThanYesWhereThereIsSomethingElse",
                   "elite first\ndecide 1 code 1 when 5 == yes\ndecide 1 code 2 when 5 != no", ""},
        ShadowCase{"TwoRulesTogether",
                   "elite first\ndecide 1 code 1 when 15 == yes and 33 == yes\n"
                   "decide 1 code 2 when 5 == 1\ndecide 1 code 3 when 33 == no\n"
                   "decide 1 code 4 when 15 == yes",
                   "4 by 1 3"},
        ShadowCase{"AdjustingRulesBehindADecidingOne",
                   "elite first\ndecide 1 code 1 when 15 == yes\n"
                   "adjust 0.1 code 'a' when 15 == yes and 5 == 1\n"
                   "adjust 0.1 code 'b' when 5 == 1",
                   "2 by 1"},
        ShadowCase{"AnAdjustingRuleEndsNoRun",
                   "elite first\nadjust 0.1 code 'a' always\ndecide 1 code 1 always", ""},
        ShadowCase{"CodeZeroEndsTheRunToo",
                   "elite first\ndecide 1 code 0 always\ndecide 1 code 1 always", "2 by 1"},
        ShadowCase{"WhatIsLeftOutForItsSupportShadowsNothing",
                   "elite first\ndecide 1 code 1 support 0.1 always\ndecide 1 code 2 always", ""},
        ShadowCase{"WhatIsLeftOutForItsLevelShadowsNothing",
                   "elite first\ndecide 1 code 1 level 2 always\ndecide 1 code 2 always", ""},
        ShadowCase{"WhatIsDroppedShadowsNothing",
                   "elite first\ndecide 1 code 1 flag 2 always\ndecide 1 code 2 always", ""},
        ShadowCase{"WhatCanNeverMatchShadowsNothing",
                   "elite first\ndecide 1 code 1 when 5 == 1 and 5 == 2\n"
                   "decide 1 code 2 when 5 == 1",
                   ""}),
    [](auto const& row) { return row.param.m_name; });

INSTANTIATE_TEST_SUITE_P(
    OtherModes, EliteShadowsTest,
    testing::Values(
        ShadowCase{"LastReplacesAnEarlierRuleWithMoreConditions",
                   "elite last\ndecide 1 code 1 when 15 == yes and 5 == 1\n"
                   "decide 0.5 code 2 when 15 == yes",
                   "1 by 2"},
        ShadowCase{"LastLeavesALaterRuleWithMoreConditions",
                   "elite last\ndecide 1 code 1 when 15 == yes\n"
                   "decide 0.5 code 2 when 15 == yes and 5 == 1",
                   ""},
        ShadowCase{"LastAppliesAllAdjustingRules",
                   "elite last\ndecide 1 code 1 always\nadjust 0.1 code 'a' always", ""},
        ShadowCase{"HighestPutsTheLesserOut",
                   "elite highest\ndecide 0.5 code 1 when 5 == 1\ndecide 0.9 code 2 always",
                   "1 by 2"},
        ShadowCase{"HighestKeepsTheEarlierOfEquals",
                   "elite highest\ndecide 0.9 code 1 always\ndecide 0.9 code 2 always", "2 by 1"},
        ShadowCase{"HighestWithCodeZeroBetweenLeavesItOpen",
                   "elite highest\ndecide 0.9 code 1 always\ndecide 0.95 code 0 when 5 == 1\n"
                   "decide 0.5 code 3 always",
                   "2 by 3"},
        ShadowCase{"LowestPutsTheGreaterOut",
                   "elite lowest\ndecide 0.9 code 1 when 5 == 1\ndecide 0.5 code 2 always",
                   "1 by 2"},
        ShadowCase{"LowestKeepsTheEarlierOfEquals",
                   "elite lowest\ndecide 0.5 code 1 always\ndecide 0.5 code 2 always", "2 by 1"},
        ShadowCase{"CodeZeroGivesWayToAnything",
                   "elite highest\ndecide 0.9 code 0 always\ndecide 0.5 code 2 always", "1 by 2"},
        ShadowCase{"NotANumberKeepsNothingOut",
                   "elite highest\ndecide 0.3 code 3 when 5 == 1\n"
                   "decide bits(0x7ff8000000000000) code 1 always\ndecide 0.5 code 2 always",
                   "1 by 3"},
        ShadowCase{"AnUnknownModeTakesTheFirst",
                   "elite select 7\ndecide 0.5 code 1 always\ndecide 0.9 code 2 always", "2 by 1"}),
    [](auto const& row) { return row.param.m_name; });

TEST(EliteShadowsTest, LongListsAreLookedThroughInBoundedTime) {
    RuleSet set;
    set.m_elite = Rules::EliteFile{plainEliteHeader(), {}, {}};
    EliteNodes rule{};
    rule.type = EliteType::deciding;
    rule.code = 1;
    rule.support = 1.0;
    // Each excludes another value of the counters, so that each pair has to be looked at.
    for (std::int32_t i = 0; i < maxEliteNodes; ++i) {
        rule.conditions = {{Attribute::hopsHeloNoDomain, Comparison::equals, i % 50},
                           {Attribute::hopsHeloMismatchesReverse, Comparison::equals, i % 49},
                           {Attribute::hopsReverseDynamic, Comparison::equals, i % 47}};
        rule.conditionCount = 3;
        set.m_elite->m_rules.push_back(rule);
    }
    EXPECT_EQ(s_shadowed(set, DeepHeaderSettings()), "");
}

// Rule i has the support i + 1 and, when it adjusts, the letter 'a' + i, so that what an engine
// says names the rules that it used.
std::set<std::int32_t> s_usedByEngine(RuleSet const& set) {
    RuleFolder const folder;
    folder.writeTree({});
    folder.writeElite(*set.m_elite->m_header, set.m_elite->m_rules);
    auto const engine = std::make_unique<DeepHeaderAdapter>();
    std::set<std::int32_t> used;
    for (auto const& vector : smallVectors()) {
        DeepHeaderAdapter::MsgProperties props;
        props.attributes = vector;
        DeepHeaderAdapter::EliteHits hits;
        engine->checkElite(hits, props, DeepHeaderSettings());
        if (hits.support > 0.0) {
            used.insert(static_cast<std::int32_t>(hits.support));
        }
        for (auto const letter : hits.reasons) {
            used.insert(letter - 'a' + 1);
        }
    }
    return used;
}

// Rules with a number in a finding that says that they never fire.
std::set<std::int32_t> s_saidToBeIdle(RuleSet const& set) {
    std::set<std::string> const ids{"elite-shadowed", "elite-impossible", "elite-contradiction",
                                    "elite-level", "elite-support"};
    std::set<std::int32_t> idle;
    for (auto const& finding : Rules::checkRules(set, DeepHeaderSettings())) {
        if (finding.m_number && ids.count(finding.m_id) != 0) {
            idle.insert(*finding.m_number);
        }
    }
    return idle;
}

RuleSet s_randomSet(bool hasOddRules) {
    RuleSet set;
    set.m_elite = Rules::EliteFile{plainEliteHeader(), {}, {}};
    set.m_elite->m_header->selectMode = *rc::gen::inRange(1, 6);
    auto const count = *rc::gen::inRange(1, 9);
    for (std::int32_t i = 0; i < count; ++i) {
        auto rule = genSmallRule(*rc::gen::element(true, true, true, false));
        auto const isOdd = hasOddRules && *rc::gen::inRange(0, 4) == 0;
        rule.support = i + 1;
        rule.code = rule.type == EliteType::adjusting ? 'a' + i : isOdd ? 0 : 100 + i;
        if (hasOddRules && *rc::gen::inRange(0, 8) == 0) {
            rule.weight = std::numeric_limits<double>::quiet_NaN();
        }
        set.m_elite->m_rules.push_back(rule);
    }
    set.m_elite->m_header->nodeCount = count;
    return set;
}

RC_GTEST_PROP(EliteShadowsProperty, NoEngineEverUsesARuleThatIsSaidToBeIdle, ()) {
    auto const set = s_randomSet(true);
    RC_LOG() << Rules::ruleText(set);
    auto const used = s_usedByEngine(set);
    for (auto const number : s_saidToBeIdle(set)) {
        RC_ASSERT(used.count(number) == 0U);
    }
}

// Without code 0 and numbers that are none the checker misses nothing.
RC_GTEST_PROP(EliteShadowsProperty, EveryRuleThatNoMessageBringsIntoUseIsFound, ()) {
    auto const set = s_randomSet(false);
    RC_LOG() << Rules::ruleText(set);
    auto const used = s_usedByEngine(set);
    auto const idle = s_saidToBeIdle(set);
    for (std::int32_t number = 1; number <= set.m_elite->m_header->nodeCount; ++number) {
        RC_ASSERT((used.count(number) == 0U) == (idle.count(number) != 0U));
    }
}

} // namespace
} // namespace Quorvane::Testing
