// SPDX-License-Identifier: Apache-2.0
//
// What the forms of the language mean: pairs of texts that say the same, and the fields they fill.
#include "rules/language/Compiler.h"

#include "rules/language/RuleText.h"
#include "rules/model/Binary.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

RuleSet s_compile(std::string const& text) {
    auto const compiled = compileRules(text);
    EXPECT_EQ(showErrors("text", text, compiled.m_errors), "");
    return compiled.m_set;
}

struct SameCase {
    char const* m_name;
    char const* m_one;
    char const* m_other;
};

class SameRulesTest : public testing::TestWithParam<SameCase> {};

TEST_P(SameRulesTest, BothTextsSayTheSame) {
    EXPECT_EQ(ruleText(s_compile(GetParam().m_one)), ruleText(s_compile(GetParam().m_other)));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, SameRulesTest,
    testing::Values(
        SameCase{"CommentsAndBlanks", "# one\n\n  version\t7 # seven\r\n", "version 7"},
        SameCase{"AttributesByNumber", "tree { 15 == yes: confidence 0 support 1 }",
                 "tree { message_id_has_dot == yes: confidence 0 support 1 }"},
        SameCase{"ValuesByNumber", "tree { 5 == 2: confidence 0 support 1 }",
                 "tree { first_helo_dynamic == literal: confidence 0 support 1 }"},
        SameCase{"NotApplicable", "tree { 5 == 8: confidence 0 support 1 }",
                 "tree { first_helo_dynamic == n/a: confidence 0 support 1 }"},
        SameCase{"NotAnalysed", "tree { 6 != 3: confidence 0 support 1 }",
                 "tree { deep_helo_dynamic != not-analysed: confidence 0 support 1 }"},
        SameCase{"OrderOfFacts", "tree { 5 == 1: support 1 counts 3 2 1 confidence 0.5 }",
                 "tree { 5 == 1: confidence 0.5 support 1 counts 3 2 1 }"},
        SameCase{"ConditionsOverLines",
                 "elite first\ndecide 1 code 5 when 5 == 1 and # why\n    6 == 1 and\n 7 == 1",
                 "elite first\ndecide 1 code 5 when 5 == 1 and 6 == 1 and 7 == 1"},
        SameCase{"EliteLineBehindItsRules", "decide 1 code 5 always\nelite last",
                 "elite last\ndecide 1 code 5 always"},
        SameCase{"CodeAsNumber", "elite first\nadjust 1 code 100 always",
                 "elite first\nadjust 1 code 'd' always"},
        SameCase{"PlusSign", "elite first\nadjust +0.5 code +1 always",
                 "elite first\nadjust 0.5 code 1 always"},
        SameCase{"ConditionsOnALineOfTheirOwn", "elite first\ndecide 1 code 5\n when 5 == 1",
                 "elite first\ndecide 1 code 5 when 5 == 1"},
        SameCase{"NoConditionsOnALineOfTheirOwn", "elite first\ndecide 1 code 5\n always",
                 "elite first\ndecide 1 code 5 always"},
        SameCase{
            "NamesOnLinesOfTheirOwn",
            "elite first\ndecide 1 code 5 # why\n name \"a\" support 3\n because \"b\"\n always",
            "elite first\ndecide 1 code 5 name \"a\" because \"b\" support 3 always"},
        SameCase{
            "SentencesOverLines",
            "elite first\ndecide 1 code 5 name \"a\" because \"b\" \"c\"\n # why\n \"d\"\n always",
            "elite first\ndecide 1 code 5 name \"a\" because \"b c d\" always"},
        SameCase{
            "NamesOfNodes",
            "tree name \"r\" {\n5 == 1: name \"a\" confidence 0 support 1\n"
            "because \"b\" {\n6 == 1: confidence 0 support 1 name \"c\" } }",
            "tree\n name \"r\" {\n5 == 1: confidence 0 support 1\n name \"a\"\n because \"b\" {\n"
            "6 == 1: confidence 0 support 1\n name \"c\"\n}\n}"},
        SameCase{"NumbersAroundAWrittenOne",
                 "tree { 5 == 1: confidence 0 support 1\n node 3 5 == 2: confidence 0 support 1\n"
                 "5 == 3: confidence 0 support 1 }",
                 "tree { node 4 5 == 1: confidence 0 support 1\n node 3 5 == 2: confidence 0 "
                 "support 1\n node 5 5 == 3: confidence 0 support 1 }"}),
    [](auto const& row) { return row.param.m_name; });

TEST(CompilerTest, NamesComeAsAFileAndChangeNoOther) {
    std::string const rules = "elite first\ndecide 1 code 5 ";
    auto const named = s_compile(rules + "name \"a\" because \"b\" always\n"
                                         "tree { 5 == 1: confidence 0 support 1 name \"n\" }");
    auto const bare = s_compile(rules + "always\ntree { 5 == 1: confidence 0 support 1 }");
    EXPECT_EQ(writeElite(*named.m_elite), writeElite(*bare.m_elite));
    EXPECT_EQ(writeTree(named), writeTree(bare));
    EXPECT_FALSE(bare.m_names.m_content.has_value());
    RuleNames const expected{{{RuleKey::Kind::decide, 5}, {"a", "b"}},
                             {{RuleKey::Kind::node, 3}, {"n", ""}}};
    EXPECT_EQ(readNames(named.m_names).m_names, expected);
    EXPECT_EQ(named.m_names.m_content, namesText(expected));
}

TEST(CompilerTest, NodesAreNumberedInReadingOrderFromTheRoot) {
    auto const set = s_compile("tree {\n"
                               " 5 == 1: confidence 0.1 support 1 {\n"
                               "  6 == 1: confidence 0.2 support 1\n"
                               " }\n"
                               " 5 == 2: confidence 0.3 support 1\n"
                               "}");
    ASSERT_EQ(set.m_nodes.size(), 6U);
    EXPECT_EQ(set.m_nodes[2].children[0], 3);
    EXPECT_EQ(set.m_nodes[2].children[1], 5);
    EXPECT_EQ(set.m_nodes[2].childCount + 0, 2);
    EXPECT_EQ(set.m_nodes[3].children[0], 4);
    EXPECT_EQ(set.m_nodes[4].confidence + 0.0, 0.2);
    EXPECT_EQ(set.m_nodes[5].confidence + 0.0, 0.3);
}

TEST(CompilerTest, ANodeIsALeafUnlessItHasABlock) {
    auto const set = s_compile("tree { 5 == 1: confidence 0.1 support 1\n"
                               "5 == 2: confidence 1 support 1 { } }");
    EXPECT_EQ(set.m_nodes[2].isLeaf, 0);
    EXPECT_EQ(set.m_nodes[3].isLeaf, 1);
    EXPECT_EQ(set.m_nodes[4].isLeaf, 0);
}

TEST(CompilerTest, WhatIsLeftOutHasItsDefault) {
    auto const set = s_compile("elite first\nadjust 0.1 code 'a' always\ndecide 1 code 5 always\n"
                               "tree { 5 == 1: confidence 0.1 support 1 }");
    EXPECT_EQ(set.m_nodes[2].confidence + 0.0, 0.5);
    EXPECT_EQ(set.m_nodes[2].support + 0.0, 100.0);
    EXPECT_EQ(set.m_nodes[3].value1 + 0, 1);
    EXPECT_EQ(set.m_nodes[3].value2 + 0, 0);
    auto const& rules = set.m_elite->m_rules;
    EXPECT_EQ(rules[0].support + 0.0, 0.0);
    EXPECT_EQ(rules[1].support + 0.0, 100.0);
    EXPECT_EQ(rules[1].level + 0, 0);
    EXPECT_EQ(rules[1].flag + 0, 0);
    EXPECT_EQ(set.m_elite->m_header->alsoWalkTree + 0, 0);
}

TEST(CompilerTest, TheVersionMakesAReadmeThatHostsUnderstand) {
    EXPECT_EQ(s_compile("version -3").version(), -3);
    EXPECT_FALSE(s_compile("tree").m_readme.has_value());
}

TEST(CompilerTest, TheLargestTreeAndTheLargestRuleAreTaken) {
    std::string loose = "tree leaf 0\n";
    for (int i = 3; i < maxTreeNodes; ++i) {
        loose += "node " + std::to_string(i) + " 5 == 1: confidence 0 support 1\n";
    }
    EXPECT_EQ(s_compile(loose).m_nodes.size(), std::size_t{maxTreeNodes});
    std::string rule = "elite first\ndecide 1 code 1 when 5 == 1";
    for (int i = 1; i < maxEliteConditions; ++i) {
        rule += " and 5 == 1";
    }
    EXPECT_EQ(s_compile(rule).m_elite->m_rules[0].conditions.size(), 100U);
}

TEST(CompilerTest, PlacesOfNodesRulesAndConditionsAreKept) {
    auto const compiled = compileRules("version 1\nelite first\n  decide 1 code 1 when 5 == 1 and\n"
                                       " 6 == 1\ntree {\n  5 == 1: confidence 0 support 1\n}");
    auto const& places = compiled.m_places;
    EXPECT_EQ(places.m_version.m_line, 1U);
    EXPECT_EQ(places.m_eliteHeader.m_line, 2U);
    EXPECT_EQ(places.m_rules.at(0).m_column, 3U);
    EXPECT_EQ(places.m_conditions.at(0).at(1).m_line, 4U);
    EXPECT_EQ(places.m_nodes.at(2).m_line, 5U);
    EXPECT_EQ(places.m_nodes.at(3).m_line, 6U);
    EXPECT_EQ(places.m_nodes.at(0).m_line, 0U); // nobody wrote it
}

} // namespace
} // namespace Quorvane::Testing
