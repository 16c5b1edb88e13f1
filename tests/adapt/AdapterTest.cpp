// SPDX-License-Identifier: Apache-2.0
#include "rules/adapt/Adapter.h"

#include "Rules.h"
#include "rules/language/RuleText.h"
#include "TrainingData.h"

#include <algorithm>
#include <limits>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

// 10 is the first reverse name, 5 the first HELO name, 19 whether author and Message-ID match.
constexpr char s_rules[] = R"(version 7
elite first also-tree
decide 0.98 support 3 code 1
    name "Dynamic"
    because "It looks dynamic."
    when first_reverse_dynamic == yes
decide 0.99 support 3 code 2 when first_helo_dynamic == yes
adjust -0.3 code 'a' when first_reverse_dynamic == no
tree confidence 0.4 counts 100 40 60 {
    first_helo_dynamic == no: confidence 0.2 support 80 counts 80 16 64
    first_helo_dynamic != no: confidence 0.7 support 20 counts 20 14 6
}
)";

constexpr AdaptLimits s_limits{};

AdaptedRules s_adapted(std::string const& rules, CountedVectors const& mail,
                       AdaptPlan const& plan) {
    return adaptRules(rulesOf(rules), mail, plan, s_limits, judgeOf);
}

std::vector<std::int32_t> s_codes(RuleSet const& rules) {
    std::vector<std::int32_t> codes;
    for (auto const& rule : rules.m_elite ? rules.m_elite->m_rules : std::vector<EliteNodes>{}) {
        codes.push_back(rule.code);
    }
    return codes;
}

double s_weight(RuleSet const& rules, std::int32_t code) {
    auto const& all = rules.m_elite->m_rules;
    auto const found =
        std::find_if(all.begin(), all.end(), [&](auto const& rule) { return rule.code == code; });
    return found == all.end() ? -1 : found->weight;
}

} // namespace

TEST(Adapter, ARuleIsEstimatedFromWhatItSaidAndWhatItDecided) {
    // Rule 1 decides 30 spam and 1 ham; rule 2 never comes first.
    auto const mail = {counted({{10, 1}, {5, 1}}, 30, 1), counted({{10, 2}, {5, 0}}, 0, 50)};
    auto const adapted = s_adapted(s_rules, mail, {50, 20, 0, false, true});
    EXPECT_NEAR(s_weight(adapted.m_set, 1), (0.98 * 50 + 30) / (50 + 31), 1e-12);
    EXPECT_DOUBLE_EQ(s_weight(adapted.m_set, 2), 0.99);
    ASSERT_EQ(adapted.m_changes.size(), 2U);
    EXPECT_EQ(adapted.m_changes[0].m_decided, (LabelCounts{30, 1}));
    EXPECT_FALSE(adapted.m_changes[0].m_isLeftOut);
}

TEST(Adapter, ARuleThatDoesNotHoldIsLeftOutAndTheNextDecides) {
    // Without rule 1, rule 2 decides the first of these, and it does not hold there either.
    auto const mail = {counted({{10, 1}, {5, 1}}, 0, 10), counted({{10, 1}, {5, 0}}, 0, 10),
                       counted({{10, 2}, {5, 0}}, 10, 10)};
    auto const adapted = s_adapted(s_rules, mail, {50, 20, 0, false, true});
    EXPECT_EQ(s_codes(adapted.m_set), (std::vector<std::int32_t>{'a'}));
    EXPECT_EQ(adapted.m_set.m_elite->m_header->nodeCount, 1);
    ASSERT_EQ(adapted.m_changes.size(), 2U);
    EXPECT_TRUE(adapted.m_changes[0].m_isLeftOut && adapted.m_changes[1].m_isLeftOut);
    EXPECT_EQ(adapted.m_changes[1].m_decided, (LabelCounts{0, 10}));
    auto const text = ruleText(adapted.m_set);
    EXPECT_EQ(text.find("It looks dynamic"), std::string::npos) << text;
    rulesOf(text); // it compiles
}

TEST(Adapter, ARuleBelowTheThresholdIsLeftAlone) {
    std::string const rules = "version 1\nelite first also-tree\n"
                              "decide 0.5 support 3 code 3 when first_reverse_dynamic == no\n"
                              "tree confidence 0.5 { first_helo_dynamic == no: confidence 0.3 "
                              "support 80 }\n";
    auto const adapted = s_adapted(rules, {counted({{10, 0}}, 0, 40)}, {50, 20, 0, false, true});
    EXPECT_EQ(s_codes(adapted.m_set), (std::vector<std::int32_t>{3}));
}

TEST(Adapter, AdjustingRulesAreLeftOutIfThePlanSaysSo) {
    auto const mail = {counted({{10, 2}, {5, 0}}, 5, 50)};
    EXPECT_EQ(s_codes(s_adapted(s_rules, mail, {50, 20, 0, false, true}).m_set),
              (std::vector<std::int32_t>{1, 2, 'a'}));
    auto const without = s_adapted(s_rules, mail, {50, 20, 0, false, false});
    EXPECT_EQ(s_codes(without.m_set), (std::vector<std::int32_t>{1, 2}));
    EXPECT_EQ(without.m_changes.back().m_rule, (RuleKey{RuleKey::Kind::adjust, 'a'}));
}

TEST(Adapter, NodesAreEstimatedFromTheMailThatReachesThem) {
    auto const mail = {counted({{10, 0}, {5, 0}}, 10, 30), counted({{10, 2}, {5, 0}}, 0, 20)};
    auto const adapted = s_adapted(s_rules, mail, {50, 20, 0, false, true});
    auto const& nodes = adapted.m_set.m_nodes;
    ASSERT_EQ(nodes.size(), 5U);
    EXPECT_NEAR(nodes[3].confidence, (0.2 * 20 + 10) / (20 + 60), 1e-12);
    EXPECT_NEAR(nodes[2].confidence, (0.4 * 20 + 10) / (20 + 60), 1e-12); // the root: the sum
    EXPECT_DOUBLE_EQ(nodes[4].confidence, 0.7);                           // no mail reached it
    EXPECT_DOUBLE_EQ(nodes[3].support, 100.0);
    EXPECT_EQ(nodes[3].value1, 140);
    EXPECT_EQ(nodes[3].value2, 26);
    EXPECT_EQ(nodes[3].value3, 114);
    EXPECT_EQ(adapted.m_nodesAdded, 0U);
}

TEST(Adapter, ALeafGrowsWhereTheMailGivesReason) {
    auto const mail = {counted({{10, 2}, {5, 0}, {19, 1}}, 0, 200),
                       counted({{10, 2}, {5, 0}, {19, 0}}, 100, 0)};
    auto const adapted = s_adapted(s_rules, mail, {50, 20, 0, true, true});
    EXPECT_EQ(adapted.m_nodesAdded, 2U);
    auto const judge = judgeOf(adapted.m_set);
    EXPECT_EQ(judge(vectorOf({{10, 2}, {5, 0}, {19, 0}})).m_verdict, Verdict::spam);
    EXPECT_EQ(judge(vectorOf({{10, 2}, {5, 0}, {19, 1}})).m_verdict, Verdict::ham);
    // The file in the form that people read says the same.
    auto const again = judgeOf(rulesOf(ruleText(adapted.m_set)));
    EXPECT_EQ(again(vectorOf({{10, 2}, {5, 0}, {19, 0}})).m_verdict, Verdict::spam);
}

TEST(Adapter, HamThatNobodySawKeepsASmallLeafFromAVerdict) {
    auto const mail = {counted({{10, 2}, {5, 0}, {19, 1}}, 0, 200),
                       counted({{10, 2}, {5, 0}, {19, 0}}, 60, 0)};
    auto const verdict = [&](double unseenHam) {
        auto const adapted = s_adapted(s_rules, mail, {50, 20, unseenHam, true, true});
        return judgeOf(adapted.m_set)(vectorOf({{10, 2}, {5, 0}, {19, 0}})).m_verdict;
    };
    EXPECT_EQ(verdict(0), Verdict::spam);
    EXPECT_EQ(verdict(6), Verdict::none);
}

TEST(Adapter, WithoutAdjustingRulesANodeSaysSpamOnlyOfWhatTheSiteProves) {
    std::string const rules = "version 1\nelite first also-tree\n"
                              "adjust -0.2 code 'a' when first_helo_is_domain == no\n"
                              "tree confidence 0.9 {\n"
                              "    first_helo_dynamic == no: confidence 0.99 support 50\n"
                              "    first_helo_dynamic != no: confidence 0.99 support 50\n}\n";
    auto const verdict = [&](std::int32_t helo, std::uint64_t spam, bool keepsAdjusting) {
        auto const mail = {counted({{0, 0}, {5, 0}}, spam, 0)};
        auto const adapted = s_adapted(rules, mail, {50, 20, 3, false, keepsAdjusting});
        return judgeOf(adapted.m_set)(vectorOf({{0, 1}, {5, helo}})).m_verdict;
    };
    EXPECT_EQ(verdict(0, 100, false), Verdict::spam);
    EXPECT_EQ(verdict(0, 20, false), Verdict::none);  // 20 of 23 prove nothing
    EXPECT_EQ(verdict(1, 100, false), Verdict::none); // no mail of the site
    EXPECT_EQ(verdict(1, 100, true), Verdict::spam);
}

TEST(Adapter, WhatSaidSpamGoesOnWhereNothingHoldsItBack) {
    std::string const rules = "version 1\ntree confidence 0.5 {\n"
                              "    first_helo_dynamic == no: confidence 0.99 support 50\n"
                              "    first_helo_dynamic != no: confidence 0.9 support 50\n}\n";
    auto const verdict = [&](std::int32_t helo, std::uint64_t spam, std::uint64_t ham) {
        auto const mail = {counted({{5, helo}}, spam, ham)};
        auto const adapted = s_adapted(rules, mail, {50, 20, 3, false, true});
        return judgeOf(adapted.m_set)(vectorOf({{5, helo}})).m_verdict;
    };
    EXPECT_EQ(verdict(0, 3, 0), Verdict::spam);
    EXPECT_EQ(verdict(0, 3, 10), Verdict::none); // it does not hold at this site
    EXPECT_EQ(verdict(1, 40, 0), Verdict::none); // 40 of 43 prove nothing
    EXPECT_EQ(verdict(1, 100, 0), Verdict::spam);
}

TEST(Adapter, AFewMessagesGrowNothing) {
    auto const mail = {counted({{10, 2}, {5, 0}, {19, 1}}, 0, 7),
                       counted({{10, 2}, {5, 0}, {19, 0}}, 7, 0)};
    EXPECT_EQ(s_adapted(s_rules, mail, {50, 20, 0, true, true}).m_nodesAdded, 0U);
}

TEST(Adapter, ATreeNeverOutgrowsItsFile) {
    CountedVectors mail;
    for (std::int32_t i = 0; i < 900; ++i) { // hops: each number has a label of its own
        mail.push_back(
            counted({{10, 2}, {5, 0}, {9, i}}, i % 2 == 0 ? 0U : 9000U, i % 2 == 0 ? 9000U : 0U));
    }
    auto const adapted =
        adaptRules(rulesOf(s_rules), mail, {50, 20, 0, true, true}, {0.95, 0.0}, judgeOf);
    EXPECT_GT(adapted.m_nodesAdded, 400U);
    EXPECT_LE(adapted.m_set.m_nodes.size(), static_cast<std::size_t>(maxTreeNodes));
    judgeOf(adapted.m_set); // an engine loads it
}

TEST(Adapter, AnUnusualTreeIsNoTrouble) {
    auto rules = rulesOf(s_rules);
    rules.m_nodes[3].childCount = 12; // more than there is room for, and a circle
    rules.m_nodes[3].children = {2, 3, 4, -7, 4000, 0, 0, 0, 0, 0};
    auto const mail = {counted({{10, 2}, {5, 0}}, 5, 50)};
    Judge const judge = [](AttributeVector const&) {
        JudgedVector judged;
        judged.m_decider = {false, 3};
        return judged;
    };
    adaptRules(rules, mail, {50, 20, 0, true, true}, s_limits,
               [&](RuleSet const&) { return judge; });
    // Each node has the next one ten times: there are more ways down than can be gone.
    rules.m_nodes.resize(60, rules.m_nodes[4]);
    for (std::size_t i = treeRoot; i < rules.m_nodes.size(); ++i) {
        rules.m_nodes[i].children.fill(static_cast<std::int32_t>(i) + 1);
        rules.m_nodes[i].childCount = maxChildren;
        rules.m_nodes[i].value1 = std::numeric_limits<std::int32_t>::min();
        rules.m_nodes[i].value2 = std::numeric_limits<std::int32_t>::max();
    }
    auto const adapted = adaptRules(rules, mail, {50, 20, 0, true, true}, s_limits,
                                    [&](RuleSet const&) { return judge; });
    EXPECT_EQ(adapted.m_set.m_nodes[treeRoot].value1, 55);
    EXPECT_EQ(adapted.m_set.m_nodes[treeRoot].value2, std::numeric_limits<std::int32_t>::max());
    adaptRules(RuleSet{}, mail, {50, 20, 0, true, true}, s_limits,
               [&](RuleSet const&) { return judge; });
}

} // namespace Quorvane::Testing
