// SPDX-License-Identifier: Apache-2.0
//
// Every error of the compiler: where it points, what it says, and that it says what to do.
#include "rules/language/Compiler.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

// "LINE:COLUMN TEXT" of each error, one a line.
std::string s_errors(std::string const& text) {
    std::string all;
    for (auto const& error : compileRules(text).m_errors) {
        all += std::to_string(error.m_position.m_line) + ':' +
               std::to_string(error.m_position.m_column) + ' ' + error.m_text + '\n';
    }
    return all;
}

struct ErrorCase {
    std::string m_text;
    std::string m_errors;
};

class CompilerErrorsTest : public testing::TestWithParam<ErrorCase> {};

TEST_P(CompilerErrorsTest, PointsAtTheMistakeAndSaysWhatToDo) {
    EXPECT_EQ(s_errors(GetParam().m_text), GetParam().m_errors) << GetParam().m_text;
}

std::string s_repeat(std::string const& text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(
    Words, CompilerErrorsTest,
    testing::Values(
        ErrorCase{"@", "1:1 unexpected character \"@\"\n"},
        ErrorCase{"\x01", "1:1 unexpected character \"\\x01\"\n"},
        ErrorCase{"version 1\n\"no end", "2:1 this text has no end; close it with \" on the same "
                                         "line\n"},
        ErrorCase{"versoin 1",
                  "1:1 unexpected \"versoin\" in the beginning of a line; did you mean "
                  "\"version\"?\n"},
        ErrorCase{"umbrella", "1:1 unexpected \"umbrella\" in the beginning of a line; it takes "
                              "version, elite, adjust, decide, tree\n"},
        ErrorCase{"version", "1:8 the version number is expected; found the end of the line\n"},
        ErrorCase{"version 1x", "1:9 the version number is expected, a whole number of 32 bits; "
                                "\"1x\" is not one\n"},
        ErrorCase{"version 1 2", "1:11 the end of the line is expected; found \"2\"\n"},
        ErrorCase{"version 1\nversion 2", "2:1 \"version\" is given twice; keep one\n"},
        ErrorCase{"version 2\nreadme \"CF_DT_VERSION=3\"",
                  "2:1 hosts read version 3 in this text, not version 2; drop the readme lines\n"},
        ErrorCase{"version 2\nreadme \"hello\"",
                  "2:1 hosts read no version in this text, not version 2; drop the readme lines\n"},
        ErrorCase{"readme x", "1:8 a text in double quotes is expected; found \"x\"\n"},
        ErrorCase{"readme \"\\q\"",
                  "1:8 this text holds an unknown escape; \\n, \\r, \\t, \\\\, \\\" "
                  "and \\xNN with two hexadecimal digits are known\n"},
        ErrorCase{"tree-tail \"0\"", "1:11 pairs of hexadecimal digits are expected, as in \"00 "
                                     "ff\"\n"},
        // Columns count characters, not bytes.
        ErrorCase{"readme \"\xc3\xa4\" x", "1:12 the end of the line is expected; found \"x\"\n"}));

INSTANTIATE_TEST_SUITE_P(
    Conditions, CompilerErrorsTest,
    testing::Values(
        ErrorCase{"tree when first_revers_dynamic == yes:",
                  "1:11 unknown attribute \"first_revers_dynamic\"; did you mean "
                  "\"first_reverse_dynamic\"?\n"},
        ErrorCase{"tree when weather == yes:", "1:11 unknown attribute \"weather\"; \"qvrules "
                                               "attributes\" lists the names\n"},
        ErrorCase{"tree when == yes:", "1:11 the name or the number of an attribute is expected; "
                                       "found \"==\"\n"},
        ErrorCase{"tree when 5 = yes:",
                  "1:13 unexpected character \"=\"; write == for \"equals\"\n"},
        ErrorCase{"tree when 5 ! yes:",
                  "1:13 unexpected character \"!\"; write != for \"differs from\"\n"},
        ErrorCase{"tree when 5 is yes:", "1:13 == or != is expected; found \"is\"\n"},
        ErrorCase{"tree when 5 ==",
                  "1:15 a value is expected, a word or a number; found the end of "
                  "the line\n"},
        ErrorCase{"tree when 5 == unknown:", "1:16 first_helo_dynamic has no value \"unknown\"; it "
                                             "takes no, yes, literal, n/a\n"},
        ErrorCase{"tree when 5 == yse:",
                  "1:16 first_helo_dynamic has no value \"yse\"; it takes no, "
                  "yes, literal, n/a; did you mean \"yes\"?\n"},
        ErrorCase{"tree when 2 == yes:",
                  "1:16 hops_helo_no_domain has no value \"yes\"; it takes a "
                  "number from 0 on\n"},
        ErrorCase{"tree when 14 == unknown:",
                  "1:17 first_forged has no value \"unknown\"; it takes "
                  "no, yes or any number\n"},
        ErrorCase{"tree when 77 == maybe:", "1:17 unknown value \"maybe\"\n"},
        ErrorCase{"tree when 5 test 3 1:", "1:18 \"(\" is expected; found \"3\"\n"}));

INSTANTIATE_TEST_SUITE_P(
    Elite, CompilerErrorsTest,
    testing::Values(
        ErrorCase{"elite",
                  "1:6 how one of several matching rules is chosen (first, last, highest or "
                  "lowest) is expected; found the end of the line\n"},
        ErrorCase{"elite frist", "1:7 unexpected \"frist\" in the elite line; did you mean "
                                 "\"first\"?\n"},
        ErrorCase{"elite first last", "1:13 \"last\" is given twice; keep one\n"},
        ErrorCase{"elite first\nelite last", "2:1 \"elite\" is given twice; keep one\n"},
        ErrorCase{"elite first reserved3 \"00\"", "1:1 \"reserved3\" of the elite line holds 12 "
                                                  "bytes\n"},
        ErrorCase{
            "decide 1 code 1 always",
            "1:1 elite rules need a line \"elite first also-tree\" before them, which says how "
            "one of several is chosen and whether the tree is consulted too\n"},
        ErrorCase{
            "elite first\ndecide 0.5 always",
            "2:1 this rule has no code; add \"code\" and the number that answers show when it "
            "decides\n"},
        ErrorCase{
            "elite first\nadjust 0.5 always",
            "2:1 this rule has no code; add \"code\" and the letter that answers show when it "
            "fires, as in code 'd'\n"},
        ErrorCase{"elite first\ndecide nan code 1 always",
                  "2:8 a confidence from 0 to 1 is expected, as in 0.97; found \"nan\"\n"},
        ErrorCase{"elite first\nadjust 0,5 code 1 always",
                  "2:9 unexpected character \",\"\n"
                  "2:10 unexpected \"5\" in an elite rule; it takes code, support, level, name, "
                  "because, flag, when, always, reserved, conditions\n"},
        ErrorCase{
            "elite first\ndecide bits(7) code 1 always",
            "2:13 bits(0x...) with up to 16 hexadecimal digits is expected; \"7\" is not one\n"},
        ErrorCase{"elite first\ndecide 1 code 'dd' always",
                  "2:15 one printable character between single quotes is expected, as in 'd'\n"},
        ErrorCase{"elite first\ndecide 1 code always",
                  "2:15 a code is expected, a number or a character as in 'd'; found \"always\"\n"},
        ErrorCase{"elite first\ndecide 1 code 1", "2:16 \"when\" and conditions, or \"always\", is "
                                                  "expected; found the end of the line\n"},
        ErrorCase{"elite first\ndecide 1 code 1 suport 5% always",
                  "2:17 unexpected \"suport\" in an elite rule; did you mean \"support\"?\n"
                  "2:25 unexpected character \"%\"; support is a percentage without the sign\n"},
        ErrorCase{"elite first\ndecide 1 code 1 when 5 == 1 or 6 == 1",
                  "2:29 \"and\" or the end of the line is expected; found \"or\"\n"},
        ErrorCase{
            "elite first\ndecide 1 code 1 conditions 3 always",
            "2:1 \"conditions\" must be the number of conditions, or below zero for a rule with "
            "none\n"},
        ErrorCase{
            "elite first\ndecide 1 code 1 when 5 == 1" + s_repeat(" and\n5 == 1", 100),
            "102:1 a rule has at most 100 conditions; a file with more would be cut off here by "
            "every engine\n"},
        ErrorCase{"elite first\n" + s_repeat("decide 1 code 1 always\n", 5002),
                  "5003:1 engines read 5001 elite rules and no more\n"},
        ErrorCase{"elite-tail \"" + s_repeat("00", 32) + "\"",
                  "1:1 32 bytes or more need an elite line before them\n"}));

INSTANTIATE_TEST_SUITE_P(
    Tree, CompilerErrorsTest,
    testing::Values(
        ErrorCase{"tree {", "1:6 this \"{\" has no \"}\"\n"},
        ErrorCase{"tree {\n}\n}",
                  "3:1 this \"}\" closes nothing; look for a \"}\" too many above\n"},
        ErrorCase{"tree\ntree", "2:1 \"tree\" is given twice; keep one\n"},
        ErrorCase{"tree {\n 5 == 1 confidence 0 support 1\n}",
                  "2:9 \":\" after the condition is expected; found \"confidence\"\n"},
        ErrorCase{
            "tree {\n 5 == 1: confidence 0\n}",
            "2:2 this node has no support; add \"support\" and the percentage of messages that "
            "reach it, 0 to 100\n"},
        ErrorCase{
            "tree {\n 5 == 1: support 0\n}",
            "2:2 this node has no confidence; add \"confidence\" and the probability of spam, 0 "
            "to 1\n"},
        ErrorCase{"tree {\n 5 == 1: confidance 0 support 1\n}",
                  "2:10 unexpected \"confidance\" in a tree node; did you mean \"confidence\"?\n"},
        ErrorCase{"tree {\n 5 == 1: confidence 0 confidence 0 support 1\n}",
                  "2:23 \"confidence\" is given twice; keep one\n"},
        ErrorCase{"tree {\n 5 == 1: confidence 0 support 1 counts 1 2\n}",
                  "2:43 the number of ham messages is expected; found the end of the line\n"},
        ErrorCase{"tree {\n 5 == 1: confidence 0 support 1 counts 0 0 0\n}",
                  "2:2 the first of the counts must be at least 1, or every engine refuses the "
                  "file\n"},
        ErrorCase{"tree {\n 38 == 1: confidence 0 support 1\n}",
                  "2:2 attribute 38 does not exist; they go from 0 to 37\n"},
        ErrorCase{"tree {\n 5 test(2) 1: confidence 0 support 1\n}",
                  "2:2 a test number above 1 is refused by every engine; write == or !=\n"},
        ErrorCase{"tree {\n 5 == 1: confidence 0 support 1 leaf 256\n}",
                  "2:2 a leaf mark is a number from 0 to 255\n"},
        ErrorCase{"tree reserved1 \"00\"", "1:1 \"reserved1\" of a node holds 3 bytes\n"},
        ErrorCase{"tree slots 1 2 3 4 5 6 7 8 9 0 {\n 5 == 1: confidence 0 support 1\n}",
                  "1:1 a node has \"slots\" or a block of children, not both\n"},
        ErrorCase{"tree slots 1 2 3", "1:17 a node number for each of the ten slots is expected; "
                                      "found the end of the line\n"},
        ErrorCase{"tree {\n-> x\n}", "2:4 the number of a node is expected; found \"x\"\n"},
        ErrorCase{"tree {\n" + s_repeat("-> 2\n", 11) + "}",
                  "12:1 a node has at most 10 children; split its block with a test above\n"},
        ErrorCase{"tree {\nnode 499 5 == 1: confidence 0 support 1\n}",
                  "2:1 499 is not a node number; they go from 0 to 498\n"},
        ErrorCase{
            "tree\nnode 2 5 == 1: confidence 0 support 1",
            "2:1 there is a node 2 already, in line 1; leave numbers out and they are given in "
            "order\n"},
        ErrorCase{"tree\nnode 4 5 == 1: confidence 0 support 1",
                  "2:1 node 4 comes after a gap: there is no node 3; number the nodes without gaps "
                  "or leave the numbers out\n"},
        ErrorCase{"tree {\n" + s_repeat("5 == 1: confidence 0 support 1 {\n", 497) +
                      s_repeat("}", 498),
                  "498:1 the tree has too many nodes; with records 0 and 1 an engine takes 499\n"},
        ErrorCase{"tree" + s_repeat(" {\n5 == 1: confidence 0 support 1", 600),
                  "501:32 nested deeper than a tree of 499 nodes can be\n"},
        ErrorCase{"tree-tail \"" + s_repeat("00", 92) + "\"",
                  "1:1 a tree tail is shorter than a record of 92 bytes\n"}));

// A rule with a name on a line of its own.
std::string s_named(std::string const& naming) {
    return "elite first\ndecide 1 code 5\n  " + naming + "\n  always";
}

// They turn the direction of text around; in two parts, so that they do not do so here.
std::string const s_override = std::string("\xe2\x80") + '\xae';
std::string const s_isolate = std::string("\xe2\x81") + '\xa6';
std::string const s_nameCharacters =
    "a name takes printable ASCII characters only, and none of \" \\ ; =\n";
std::string const s_sentenceCharacters =
    "a sentence is one line without control characters and invisible ones\n";

INSTANTIATE_TEST_SUITE_P(
    Names, CompilerErrorsTest,
    testing::Values(
        ErrorCase{s_named("name"),
                  "3:7 a name in double quotes is expected; found the end of the line\n"},
        ErrorCase{s_named("name 5"), "3:8 a name in double quotes is expected; found \"5\"\n"},
        ErrorCase{s_named("name \"a\"\n  because"),
                  "4:10 a sentence in double quotes is expected; found the end of the line\n"},
        ErrorCase{s_named("name \"\""), "3:8 a name cannot be empty\n"},
        ErrorCase{s_named("name \"" + s_repeat("a", 60) + "\""), ""},
        ErrorCase{s_named("name \"" + s_repeat("a", 61) + "\""),
                  "3:8 a name has at most 60 characters; this one has 61\n"},
        ErrorCase{s_named("name \" a\""), "3:8 a name does not begin or end with a blank\n"},
        ErrorCase{s_named("name \"a \""), "3:8 a name does not begin or end with a blank\n"},
        ErrorCase{s_named("name \"a\\nb\""), "3:8 " + s_nameCharacters},
        ErrorCase{s_named("name \"a\\rb\""), "3:8 " + s_nameCharacters},
        ErrorCase{s_named("name \"a\\x00b\""), "3:8 " + s_nameCharacters},
        ErrorCase{s_named("name \"a\\x7fb\""), "3:8 " + s_nameCharacters},
        ErrorCase{s_named("name \"a; b\""), "3:8 " + s_nameCharacters},
        ErrorCase{s_named("name \"a\\\"b\""), "3:8 " + s_nameCharacters},
        ErrorCase{s_named("name \"=?utf-8?q?a?=\""), "3:8 " + s_nameCharacters},
        ErrorCase{s_named("name \"J\xc3\xbcrgen\""), "3:8 " + s_nameCharacters},
        ErrorCase{s_named("name \"" + s_override + "gnp\""), "3:8 " + s_nameCharacters},
        ErrorCase{s_named("because \"why\""),
                  "3:11 a sentence needs a name before it; add \"name\" and a name in double "
                  "quotes\n"},
        ErrorCase{s_named("name \"a\" because \"\""), "3:20 a sentence cannot be empty\n"},
        ErrorCase{s_named("name \"a\" because \"" + s_repeat("\xc3\xa4", 300) + "\""), ""},
        ErrorCase{s_named("name \"a\" because \"" + s_repeat("\xc3\xa4", 301) + "\""),
                  "3:20 a sentence has at most 300 characters; this one has 301\n"},
        ErrorCase{s_named("name \"a\" because \"b\\nc\""), "3:20 " + s_sentenceCharacters},
        ErrorCase{s_named("name \"a\" because \"b\tc\""), "3:20 " + s_sentenceCharacters},
        ErrorCase{s_named("name \"a\" because \"b\\xc2\\x85c\""), "3:20 " + s_sentenceCharacters},
        // Right-to-left override, isolate, mark; line separator; zero width space.
        ErrorCase{s_named("name \"a\" because \"b" + s_override + "\""),
                  "3:20 " + s_sentenceCharacters},
        ErrorCase{s_named("name \"a\" because \"b" + s_isolate + "\""),
                  "3:20 " + s_sentenceCharacters},
        ErrorCase{s_named("name \"a\" because \"b\xd8\x9c\""), "3:20 " + s_sentenceCharacters},
        ErrorCase{s_named("name \"a\" because \"b\xe2\x80\xa8\""), "3:20 " + s_sentenceCharacters},
        ErrorCase{s_named("name \"a\" because \"b\xe2\x80\x8b\""), "3:20 " + s_sentenceCharacters},
        ErrorCase{s_named("name \"a\" because \"b\\xff\""), "3:20 a sentence is text in UTF-8\n"},
        ErrorCase{s_named("name \"a\" because \"b \""),
                  "3:20 a sentence does not begin or end with a blank\n"},
        ErrorCase{s_named("name \"a\" name \"b\""), "3:12 \"name\" is given twice; keep one\n"},
        ErrorCase{s_named("name \"a\"") + "\ndecide 1 code 5\n  name \"b\" always",
                  "6:8 elite rule 5 has a name already, in line 3; rules of one code share one "
                  "name\n"},
        ErrorCase{s_named("name \"a\"") + "\nadjust 1 code 5 name \"a\" always", ""},
        ErrorCase{"elite first\ntype 7 1 code 5 name \"a\" because \"b\" always",
                  "2:22 a rule that neither decides nor adjusts has no name; drop it\n"
                  "2:34 a rule that neither decides nor adjusts has no name; drop it\n"},
        ErrorCase{"tree {\n 5 == 1: confidence 0 support 1\n  name \"a;\"\n}",
                  "3:8 " + s_nameCharacters},
        ErrorCase{"tree {\n 5 == 1: confidence 0 support 1\n  because \"b\"\n}",
                  "3:11 a sentence needs a name before it; add \"name\" and a name in double "
                  "quotes\n"},
        ErrorCase{"elite first\ndecide 1 code 5 always\nname \"a\"",
                  "3:1 names stand before the conditions of an elite rule, or after the figures of "
                  "a node\n"},
        ErrorCase{s_named("name \"a\"") + "\nnames-file \"x\"",
                  "5:1 names are given at the rules, too; drop the names-file lines, or those "
                  "names\n"},
        // The lines of a rule that is wrong are skipped with it.
        ErrorCase{"elite first\ndecide x code 5\n  name \"a\"\n  because \"b\"\n    \"c\"\n"
                  "  when 5 == 1\numbrella",
                  "2:8 a confidence from 0 to 1 is expected, as in 0.97; found \"x\"\n"
                  "7:1 unexpected \"umbrella\" in the beginning of a line; it takes version, "
                  "elite, adjust, decide, tree\n"}));

TEST(CompilerErrorsTest, OneRunReportsManyErrorsAndSkipsNoBlock) {
    EXPECT_EQ(s_errors("version x\n"
                       "tree {\n"
                       "  nonsense == 1: confidence 0 support 1 {\n"
                       "    5 == 1 confidence 0 support 1\n"
                       "  }\n"
                       "  5 == 1 {\n"
                       "    6 == maybe: confidence 0 support 1\n"
                       "  }\n"
                       "}\n"
                       "decide x\n"),
              "1:9 the version number is expected; found \"x\"\n"
              "3:3 unknown attribute \"nonsense\"; \"qvrules attributes\" lists the names\n"
              "4:12 \":\" after the condition is expected; found \"confidence\"\n"
              "6:10 \":\" after the condition is expected; found \"{\"\n"
              "7:10 deep_helo_dynamic has no value \"maybe\"; it takes no, yes, literal, "
              "not-analysed, n/a\n"
              "10:8 a confidence from 0 to 1 is expected, as in 0.97; found \"x\"\n");
}

TEST(CompilerErrorsTest, ItGivesUpWhenMoreErrorsWouldHelpNobody) {
    EXPECT_EQ(compileRules(s_repeat("nonsense\n", 1000)).m_errors.size(), 20U);
    EXPECT_LE(compileRules(s_repeat("@", 1000)).m_errors.size(), 20U);
}

TEST(CompilerErrorsTest, TheLineIsShownWithAMarkBelowThePlace) {
    std::string const text = "version 1\n\tversoin\x1b[31m 2\n";
    auto const compiled = compileRules(text);
    EXPECT_EQ(showErrors("my.qvr", text, {compiled.m_errors.front()}),
              "my.qvr:2:2: error: unexpected \"versoin\" in the beginning of a line; did you mean "
              "\"version\"?\n"
              "   versoin?[31m 2\n"
              "   ^\n");
}

TEST(CompilerErrorsTest, WhatAnErrorQuotesIsShownWithoutControlCharacters) {
    std::string const text = "version \"\x1b[31m\"\n";
    auto const compiled = compileRules(text);
    EXPECT_EQ(showErrors("my.qvr", text, compiled.m_errors),
              "my.qvr:1:9: error: the version number is expected; found \"?[31m\"\n"
              "  version \"?[31m\"\n"
              "          ^\n");
}

} // namespace
} // namespace Quorvane::Testing
