// SPDX-License-Identifier: Apache-2.0
//
// The model of a drawing, and all drawings of rule files that hold anything.
#include "apps/show/Page.h"
#include "apps/text/Utf8.h"
#include "rules/language/Compiler.h"
#include "rules/RuleGenerators.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <re2/re2.h>
#include <set>

namespace Quorvane::Testing {

using namespace Show;

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Kind = ShownBranch::Kind;

ShownRules s_shown(std::string const& text) {
    auto const compiled = Rules::compileRules(text);
    EXPECT_TRUE(compiled.m_errors.empty());
    return shownRules("rules", compiled.m_set);
}

std::vector<Kind> s_kinds(ShownNode const& node) {
    std::vector<Kind> kinds;
    for (auto const& branch : node.m_branches) {
        kinds.push_back(branch.m_kind);
    }
    return kinds;
}

std::vector<std::int32_t> s_numbers(ShownRules const& rules) {
    std::vector<std::int32_t> numbers;
    for (auto const& node : rules.m_nodes) {
        numbers.push_back(node.m_number);
    }
    return numbers;
}

TEST(ShownRulesTest, NodesStandInReadingOrderEachOnce) {
    auto const rules = s_shown("tree {\n"
                               "  node 4 chain_broken == yes: confidence 0.2 support 20 {\n"
                               "    node 5 first_forged == no: confidence 0.2 support 20\n"
                               "    -> 3\n    -> 2\n"
                               "  }\n"
                               "  node 3 chain_broken == no: confidence 0.2 support 80\n"
                               "  -> 5\n"
                               "}\n");
    EXPECT_THAT(s_numbers(rules), ElementsAre(2, 4, 5, 3));
    EXPECT_THAT(s_kinds(rules.m_nodes[0]),
                ElementsAre(Kind::node, Kind::elsewhere, Kind::elsewhere));
    EXPECT_THAT(s_kinds(rules.m_nodes[1]), ElementsAre(Kind::node, Kind::node, Kind::circle));
    EXPECT_EQ(rules.depth(), 2U);
    EXPECT_EQ(rules.leafCount(), 2U);
}

TEST(ShownRulesTest, WhatTheWalkGivesUpAtEndsTheBranches) {
    auto const rules = s_shown("tree {\n"
                               "  chain_broken == yes: confidence 0.2 support 20\n"
                               "  -> 0\n"
                               "  chain_broken == no: confidence 0.2 support 80\n"
                               "}\n");
    EXPECT_THAT(s_kinds(rules.m_nodes[0]), ElementsAre(Kind::node, Kind::end));
    EXPECT_THAT(rules.m_nodes[0].m_branches[1].m_text, HasSubstr("node 0 cannot be a child"));
    EXPECT_THAT(rules.m_unreached, ElementsAre(4));
}

TEST(ShownRulesTest, TheShareComesFromTheCountsOrElseFromTheSupport) {
    auto const counted =
        s_shown("tree counts 200 50 150 {\n"
                "  chain_broken == yes: confidence 0.2 support 90 counts 50 20 30\n"
                "  chain_broken == no: confidence 0.2 support 75\n}\n");
    EXPECT_DOUBLE_EQ(counted.m_nodes[1].m_share.value(), 0.25);
    EXPECT_DOUBLE_EQ(counted.m_nodes[2].m_share.value(), 0.75);
    auto const odd = s_shown("tree {\n chain_broken == yes: confidence 0.2 support inf\n}\n");
    EXPECT_FALSE(odd.m_nodes[1].m_share.has_value());
}

TEST(ShownRulesTest, EliteRulesThatEnginesDoNotKeepHaveNoPlace) {
    auto const rules = s_shown("elite first count 3\n"
                               "adjust 0.1 code 'a' always\n"
                               "adjust 0.1 code 'b' flag 2 always\n"
                               "decide 0.9 code 9 always\n"
                               "decide 0.9 code 10 always\n");
    ASSERT_EQ(rules.m_elite.size(), 4U);
    EXPECT_EQ(rules.m_elite[0].m_place, 0U);
    EXPECT_EQ(rules.m_elite[1].m_place, std::nullopt);
    EXPECT_EQ(rules.m_elite[2].m_place, 1U);
    EXPECT_EQ(rules.m_elite[3].m_place, std::nullopt); // not announced
}

TEST(ShownRulesTest, RulesWithoutATreeAreShown) {
    auto const rules = shownRules("rules", {});
    ASSERT_EQ(rules.m_nodes.size(), 1U);
    EXPECT_THAT(rules.m_nodes[0].m_problem, HasSubstr("no tree"));
    EXPECT_THAT(rules.m_unreached, IsEmpty());
}

std::size_t s_count(std::string const& text, std::string const& part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

// A chain of all the nodes that a file can hold.
Rules::RuleSet s_chain() {
    Rules::RuleSet set;
    set.m_nodes.resize(maxTreeNodes);
    for (std::size_t i = treeRoot; i < set.m_nodes.size(); ++i) {
        set.m_nodes[i].childCount = 1;
        set.m_nodes[i].children = {static_cast<std::int32_t>(i) + 1};
        set.m_nodes[i].value1 = 1;
    }
    set.m_nodes.back().isLeaf = 1;
    return set;
}

TEST(DrawingTest, TheDeepestTreeIsDrawnInAllForms) {
    auto const rules = shownRules("rules", s_chain());
    EXPECT_EQ(rules.depth(), 496U);
    for (std::size_t const width : {40U, 80U, 200U}) {
        auto const text = textDrawing({rules}, {width, false, true});
        EXPECT_NE(text.find("498  first_helo"), std::string::npos);
        for (std::size_t at = 0; at < text.size(); at = text.find('\n', at) + 1) {
            EXPECT_LE(columns(text.substr(at, text.find('\n', at) - at)), width);
        }
    }
    EXPECT_EQ(s_count(dotDrawing({rules}), "n497 -> n498"), 1U);
    EXPECT_EQ(s_count(svgDrawing({rules}), ">498</tspan>"), 1U);
    EXPECT_EQ(s_count(htmlDrawing({rules}, {}), "id=\"node-498\""), 1U);
}

RC_GTEST_PROP(DrawingTest, AnyRuleFilesAreDrawnWithEachNodeOnce, ()) {
    Rules::RuleSet set;
    Testing::genTree(set);
    set.m_elite = Testing::genElite();
    auto const rules = shownRules("rules", set);
    auto const numbers = s_numbers(rules);
    RC_ASSERT((std::set(numbers.begin(), numbers.end()).size()) == numbers.size());
    Traffic traffic;
    traffic.m_elite.resize(rules.m_elite.size());
    Drawing const drawing{rules, *rc::gen::arbitrary<bool>() ? &traffic : nullptr};
    RC_ASSERT(!textDrawing(drawing, {*rc::gen::inRange<std::size_t>(1, 200), true, true}).empty());
    RC_ASSERT(s_count(dotDrawing(drawing), "fillcolor=\"#") == numbers.size() + 1);
    RC_ASSERT(s_count(svgDrawing(drawing), "<g class=\"box") == numbers.size());
    RC_ASSERT(s_count(htmlDrawing(drawing, {}), "data-number=") == numbers.size());
}

RC_GTEST_PROP(DrawingTest, NoPercentageIsMoreOrLessThanCanBe, ()) {
    Rules::RuleSet set;
    Testing::genTree(set);
    set.m_elite = Testing::genElite();
    auto const rules = shownRules("rules", set);
    static RE2 const percentage("([-+]?(?:nan|inf|[0-9][-+.e0-9]*)) %");
    for (auto const& drawn : {textDrawing({rules}, {200, false, true}), dotDrawing({rules}),
                              svgDrawing({rules}), pageTree({rules}) + pageEliteTable({rules})}) {
        re2::StringPiece rest(drawn);
        for (std::string text; RE2::FindAndConsume(&rest, percentage, &text);) {
            auto const number = std::strtod(text.c_str(), nullptr);
            RC_ASSERT(number >= 0.0 && number <= 100.0);
        }
    }
}

TEST(DrawingTest, CountsBelowZeroAreNone) {
    auto set = s_chain();
    set.m_nodes[3].value1 = -3;
    set.m_nodes[3].value2 = 1;
    auto const rules = shownRules("rules", set);
    EXPECT_NE(dotDrawing({rules}).find("messages unknown (the file counts -3: 1 spam, 0 ham)"),
              std::string::npos);
    EXPECT_NE(textDrawing({rules}, {200, false, true}).find("unknown (-3)"), std::string::npos);
}

} // namespace
} // namespace Quorvane::Testing
