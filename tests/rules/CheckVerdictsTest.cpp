// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/HostSettings.h"
#include "apps/workshop/VectorJudge.h"
#include "rules/check/Checker.h"
#include "rules/language/Compiler.h"
#include "rules/language/RuleText.h"
#include "SmallVectors.h"
#include "support/EliteHeader.h"

#include <set>

namespace Quorvane::Testing {
namespace {

// The findings about verdicts, each with its problem after a colon.
std::string s_found(RuleSet const& set, DeepHeaderSettings const& settings) {
    std::set<std::string> const ids{"no-spam", "no-ham", "tree-gate"};
    std::string text;
    for (auto const& finding : Rules::checkRules(set, settings)) {
        if (ids.count(finding.m_id) != 0) {
            text += (text.empty() ? "" : " | ") + (finding.m_id + (": " + finding.m_problem));
        }
    }
    return text;
}

std::string s_found(std::string const& text, DeepHeaderSettings const& settings) {
    auto const compiled = Rules::compileRules("version 1\n" + text);
    EXPECT_EQ(Rules::showErrors("text", text, compiled.m_errors), "");
    return s_found(compiled.m_set, settings);
}

std::string s_found(std::string const& text) {
    return s_found(text, programDefaults());
}

constexpr char goodTree[] = "tree { 15 == yes: confidence 0.01 support 40\n"
                            "15 == no: confidence 0.96 support 60 }\n";

TEST(CheckVerdictsTest, FindsNothingWhereBothVerdictsAreInReach) {
    EXPECT_EQ(s_found(goodTree), "");
}

TEST(CheckVerdictsTest, NamesTheSurestNodes) {
    EXPECT_EQ(s_found("tree { 15 == yes: confidence 0.1 support 40\n"
                      "15 == no: confidence 0.9 support 60 }\n"),
              "no-spam: no message can be called spam: the most that any rule gives with "
              "adjustments is 0.9 (node 4), and the spam threshold is 0.95 | "
              "no-ham: no message can be called ham: the most that any rule gives is 0.9 "
              "(node 3), and the ham threshold is 0.95");
}

TEST(CheckVerdictsTest, CountsWhatAdjustingRulesCanAdd) {
    std::string const tree = "tree { 15 == yes: confidence 0.01 support 40\n"
                             "15 == no: confidence 0.9 support 60 }\n";
    EXPECT_EQ(s_found("elite first also-tree\nadjust 0.1 code 'a' when 5 == 1\n" + tree), "");
    // It cannot fire where the node decides, or fires after what ends the run.
    EXPECT_NE(s_found("elite first also-tree\nadjust 0.1 code 'a' when 15 == yes\n" + tree), "");
    EXPECT_NE(s_found("elite first also-tree\ndecide 0.5 code 1 always\n"
                      "adjust 0.1 code 'a' when 5 == 1\n" +
                      tree),
              "");
    EXPECT_NE(s_found("elite first also-tree\nadjust 0.04 code 'a' always\n" + tree), "");
}

TEST(CheckVerdictsTest, CountsWhatAdjustingRulesAlwaysTakeAway) {
    EXPECT_NE(
        s_found(std::string("elite first also-tree\nadjust -0.1 code 'a' always\n") + goodTree),
        "");
    EXPECT_EQ(s_found(std::string("elite first also-tree\nadjust -0.1 code 'a' when 5 == 1\n") +
                      goodTree),
              "");
}

TEST(CheckVerdictsTest, EliteRulesCanCallSpamByThemselves) {
    std::string const tree = "tree { 15 != no: confidence 0.01 support 50 }\n";
    EXPECT_EQ(s_found("elite first also-tree\ndecide 0.95 code 1 when 5 == 1\n" + tree), "");
    EXPECT_NE(s_found("elite first also-tree\ndecide 0.94 code 1 when 5 == 1\n" + tree), "");
    EXPECT_NE(s_found("elite first also-tree\ndecide 0.95 code 1 level 2 when 5 == 1\n" + tree),
              "");
    EXPECT_NE(s_found("elite first also-tree\ndecide 0.95 code 1 support 0.1 always\n" + tree), "");
    EXPECT_NE(s_found("elite first also-tree\ndecide 0.5 code 1 always\n"
                      "decide 0.95 code 2 when 5 == 1\n" +
                      tree),
              "");
}

TEST(CheckVerdictsTest, FindsATreeThatIsNotAsked) {
    auto const found =
        s_found(std::string("elite first\ndecide 0.95 code 1 when 5 == 1\n") + goodTree);
    EXPECT_EQ(found.substr(0, found.find(':')), "tree-gate");
    // Without a rule the elite file keeps nothing out.
    EXPECT_EQ(s_found(std::string("elite first\n") + goodTree), "");
    // Nor does a rule that stands after those that the header announces.
    EXPECT_EQ(
        s_found(std::string("elite first count 0\ndecide 0.95 code 1 when 5 == 1\n") + goodTree),
        "");
}

TEST(CheckVerdictsTest, TheLibrarysOwnThresholdsNeverJudge) {
    EXPECT_EQ(s_found(goodTree, DeepHeaderSettings()),
              "tree-gate: a spam threshold of 95 keeps the tree out, so no message can be called "
              "ham | no-spam: no message can be called spam: nothing can decide");
}

TEST(CheckVerdictsTest, SettingsDecideWhichNodesCount) {
    auto settings = programDefaults();
    settings.minSupport = 50.0;
    auto const found = s_found(goodTree, settings);
    EXPECT_EQ(found.substr(0, found.find(':')), "no-ham");
    // The walk stays at the parent of a node with too little support, and the root decides nothing.
    settings.minSupport = 70.0;
    EXPECT_EQ(s_found(goodTree, settings),
              "no-spam: no message can be called spam: nothing can decide | "
              "no-ham: no message can be called ham: nothing can decide");
    settings = programDefaults();
    std::string const deep = "tree { 15 == yes: confidence 0.96 support 40 {\n"
                             "33 == yes: confidence 0.01 support 20\n"
                             "33 == no: confidence 0.99 support 20 } }\n";
    EXPECT_EQ(s_found(deep, settings), "");
    settings.walkToLeaf = 0;
    EXPECT_NE(s_found(deep, settings), "");
}

TEST(CheckVerdictsTest, SaysNothingWhereAdjustmentsAreNoNumbers) {
    EXPECT_EQ(s_found("elite first also-tree\nadjust inf code 'a' when 5 == 1\n"
                      "tree { 15 == yes: confidence 0.5 support 40 }\n"),
              "");
}

RuleSet s_randomSet() {
    RuleSet set;
    set.setVersion(1);
    set.m_nodes.resize(3, DTNode{});
    auto const count = *rc::gen::inRange(4, 9);
    for (std::int32_t i = 3; i < count; ++i) {
        auto node = genNode(count);
        auto const test = genSmallCondition();
        node.attribute = test.attribute;
        node.test = test.test;
        node.testValue = test.value;
        set.m_nodes.push_back(node);
    }
    set.m_nodes[treeRoot].childCount = 2;
    set.m_nodes[treeRoot].children = {3, 4};
    set.m_elite = Rules::EliteFile{plainEliteHeader(), {}, {}};
    set.m_elite->m_header->selectMode = *rc::gen::inRange(1, 6);
    set.m_elite->m_header->alsoWalkTree = *rc::gen::inRange(0, 2);
    set.m_elite->m_header->nodeCount = *rc::gen::inRange(0, 5);
    for (std::int32_t i = 0; i < set.m_elite->m_header->nodeCount; ++i) {
        auto rule = genSmallRule(*rc::gen::arbitrary<bool>());
        rule.code = *rc::gen::element(0, 1, 2, 3);
        rule.weight *= rule.type == EliteType::adjusting ? *rc::gen::element(-1.0, 1.0) : 1.0;
        set.m_elite->m_rules.push_back(rule);
    }
    return set;
}

RC_GTEST_PROP(CheckVerdictsProperty, NoEngineGivesAVerdictThatIsSaidToBeOutOfReach, ()) {
    auto const set = s_randomSet();
    DeepHeaderSettings settings;
    settings.spamThreshold = *rc::gen::element(0.5, 0.8, 0.95, 1.0, 95.0);
    settings.hamThreshold = *rc::gen::element(0.5, 0.8, 0.95, 1.0);
    settings.minSupport = *rc::gen::element(-1.0, 0.0, 0.15, 50.0);
    settings.walkToLeaf = *rc::gen::element<std::uint8_t>(0, 1);
    auto const found = s_found(set, settings);
    RC_LOG() << Rules::ruleText(set) << found << '\n';
    Workshop::VectorJudge const judge(set, settings);
    for (auto const& vector : smallVectors()) {
        auto const verdict = judge(vector).m_verdict;
        if (verdict == Rules::Verdict::spam) {
            RC_ASSERT(found.find("called spam") == std::string::npos);
        } else if (verdict == Rules::Verdict::ham) {
            RC_ASSERT(found.find("called ham") == std::string::npos);
        }
    }
}

} // namespace
} // namespace Quorvane::Testing
