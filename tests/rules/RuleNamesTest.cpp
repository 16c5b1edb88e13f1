// SPDX-License-Identifier: Apache-2.0
//
// The file of names: what it looks like, and that whatever is in it, it gives names or says why
// not.
#include "rules/model/RuleNames.h"

#include "RuleGenerators.h"
#include "support/ReadFile.h"

namespace Quorvane::Testing {
namespace {

using namespace Rules;
using Kind = RuleKey::Kind;

// Turns the direction of text around; in two parts, so that it does not do so here.
std::string const s_override = std::string("\xe2\x80") + '\xae';
std::string const s_first = "Names of Quorvane Deep Header rules, format 1\n";

TEST(RuleNamesTest, TheFileIsTextForPeople) {
    EXPECT_EQ(namesText({{{Kind::decide, 9001}, {"A consumer line", "Both names say so."}},
                         {{Kind::adjust, 'm'}, {"Its own Message-ID", ""}},
                         {{Kind::adjust, 300}, {"Odd", ""}},
                         {{Kind::node, 17}, {"A node", "Why."}}}),
              s_first +
                  "# For people: verdicts do not depend on this file. \"qvrules compile\" writes "
                  "it.\n"
                  "\n"
                  "decide 9001\n"
                  "    name A consumer line\n"
                  "    because Both names say so.\n"
                  "\n"
                  "adjust 'm'\n"
                  "    name Its own Message-ID\n"
                  "\n"
                  "adjust 300\n"
                  "    name Odd\n"
                  "\n"
                  "node 17\n"
                  "    name A node\n"
                  "    because Why.\n");
}

TEST(RuleNamesTest, ReadsWhatPeopleWriteByHand) {
    auto const read = readNames(s_first + "\r\n  # a comment\nnode 3\nname  A\t\r\n\n\tdecide 3\n"
                                          "because B: c.\nname B\nadjust 109\nname C");
    EXPECT_EQ(read.m_problem, "");
    EXPECT_EQ(read.m_names, (RuleNames{{{Kind::node, 3}, {"A", ""}},
                                       {{Kind::decide, 3}, {"B", "B: c."}},
                                       {{Kind::adjust, 'm'}, {"C", ""}}}));
    EXPECT_TRUE(readNames(s_first).m_names.empty());
    EXPECT_EQ(readNames(s_first).m_problem, "");
}

TEST(RuleNamesTest, TheExampleInTheDocumentationIsSuchAFile) {
    auto const page = readFile(QV_DOCS "/rule-files.md");
    auto const begin = page.find("```\n" + s_first) + 4;
    auto const text = page.substr(begin, page.find("```", begin) - begin);
    auto const read = readNames(text);
    EXPECT_EQ(read.m_names.size(), 3U);
    EXPECT_EQ(namesText(read.m_names), text);
}

struct DamagedCase {
    std::string m_text;
    char const* m_problem;
};

TEST(RuleNamesTest, ADamagedFileGivesNoNamesAndSaysWhere) {
    std::string const good = s_first + "node 3\nname A\n";
    DamagedCase const cases[] = {
        {"", "line 1: the file is empty"},
        {"hello\n", "line 1: this is no file of rule names of format 1"},
        {"Names of Quorvane Deep Header rules, format 2\n",
         "line 1: this is no file of rule names of format 1"},
        {std::string(100, '\0'), "line 1: this is no file of rule names of format 1"},
        {good + "hello\n", "line 4: decide, adjust, node, name or because is expected"},
        {good + "node 3x\n",
         "line 4: the number of a rule or node is expected, or the letter of an adjusting rule"},
        {good + "node\n",
         "line 4: the number of a rule or node is expected, or the letter of an adjusting rule"},
        {good + "node 2147483648\n",
         "line 4: the number of a rule or node is expected, or the letter of an adjusting rule"},
        {good + "decide 'm'\n",
         "line 4: the number of a rule or node is expected, or the letter of an adjusting rule"},
        {good + "adjust '\x01'\n",
         "line 4: the number of a rule or node is expected, or the letter of an adjusting rule"},
        {good + "node 3\n", "line 4: node 3 is named twice"},
        {good + "name B\n", "line 4: this is said twice of node 3"},
        {good + "because B\nbecause C\n", "line 5: this is said twice of node 3"},
        {good + "node 4\nnode 5\nname B\n", "line 5: node 4 has no name"},
        {good + "node 4\nbecause B\n", "line 5: node 4 has no name"},
        {s_first + "name A\n", "line 2: a line with decide, adjust or node is expected before it"},
        {good + "node 4\nname\n", "line 5: a name cannot be empty"},
        {good + "node 4\nname a;b\n",
         "line 5: a name takes printable ASCII characters only, and none of \" \\ ; ="},
        {good + "node 4\nname " + std::string(61, 'a') + "\n",
         "line 5: a name has at most 60 characters; this one has 61"},
        {good + "node 4\nname B\nbecause " + s_override + "\n",
         "line 6: a sentence is one line without control characters and invisible ones"},
        {good + "node 4\nname B\nbecause \xff\n", "line 6: a sentence is text in UTF-8"},
    };
    for (auto const& row : cases) {
        auto const read = readNames(row.m_text);
        EXPECT_EQ(read.m_problem, row.m_problem);
        EXPECT_TRUE(read.m_names.empty()) << row.m_problem;
    }
}

TEST(RuleNamesTest, AFileThatCannotBeReadSaysSo) {
    EXPECT_EQ(readNames(SpareFile{}).m_problem, "");
    EXPECT_EQ(readNames(SpareFile{{}, "is no regular file"}).m_problem, "is no regular file");
}

// All that a set can hold, and what a sentence of four bytes a character takes.
TEST(RuleNamesTest, TheLongestNamesOfAllRulesFitIntoAFile) {
    std::string sentence;
    for (std::size_t i = 0; i < maxSentenceLength; ++i) {
        sentence += "\xf0\x9f\x99\x82";
    }
    ASSERT_EQ(sentenceProblem(sentence), "");
    RuleName const longest{std::string(maxNameLength, 'a'), sentence};
    RuleNames names;
    for (std::int32_t i = 0; i < maxEliteNodes; ++i) {
        names[{Kind::decide, -2147483647 + i}] = longest;
    }
    for (std::int32_t i = 0; i < maxTreeNodes; ++i) {
        names[{Kind::node, i}] = longest;
    }
    EXPECT_LE(namesText(names).size(), maxNamesFileSize);
    EXPECT_EQ(readNames(namesText(names)).m_names, names);
}

RC_GTEST_PROP(RuleNamesTest, WritingAndReadingAreInverses, ()) {
    RuleNames names;
    for (int count = *rc::gen::inRange(0, 8); count > 0; --count) {
        names[genRuleKey()] = genName();
    }
    auto const read = readNames(namesText(names));
    RC_ASSERT(read.m_problem.empty());
    RC_ASSERT(read.m_names == names);
}

// What it reads can be shown in a header, a log and a line: nobody checks again.
RC_GTEST_PROP(RuleNamesTest, WhateverTheFileHoldsTheNamesAreSafe, ()) {
    auto text = namesText({{{Kind::decide, 9001}, genName()}, {{Kind::node, 3}, genName()}});
    for (int count = *rc::gen::inRange(1, 4); count > 0; --count) {
        auto const at = *rc::gen::inRange<std::size_t>(s_first.size(), text.size() + 1);
        text.insert(at, *rc::gen::element<std::string>("\n", "\r", "\"", ";", s_override, "a",
                                                       "\x1b[2J", "\nnode 5\nname x", "=?", " "));
    }
    for (auto const& [key, name] : readNames(text).m_names) {
        RC_ASSERT(nameProblem(name.m_name).empty());
        RC_ASSERT(name.m_sentence.empty() || sentenceProblem(name.m_sentence).empty());
    }
}

} // namespace
} // namespace Quorvane::Testing
