// SPDX-License-Identifier: Apache-2.0
#include "rules/check/Drift.h"

#include "RuleGenerators.h"
#include "rules/language/Compiler.h"
#include "rules/language/RuleText.h"
#include "rules/model/Binary.h"
#include "rules/model/Readme.h"

namespace Quorvane::Testing {
namespace {

constexpr char ruleLines[] = "version 4\n"
                             "elite first also-tree\n"
                             "adjust 0.1 code 'a' when 5 == 1\n"
                             "decide 0.97 code 9001 when 10 == yes and 37 == no\n"
                             "decide 0.98 code 9002 when 33 == yes\n"
                             "tree { 15 == yes: confidence 0.1 support 40 counts 10 1 9\n"
                             "15 == no: confidence 0.9 support 60 }\n";

RuleSet s_set() {
    return Rules::compileRules(ruleLines).m_set;
}

// "qv2.dt 2.1: problem" of each, on a line.
std::string s_drift(RuleSet const& files) {
    std::string text;
    for (auto const& finding : Rules::driftFindings(s_set(), files)) {
        EXPECT_EQ(finding.m_severity, Rules::Finding::Severity::difference);
        auto const isTree = finding.m_file == Rules::Finding::File::tree;
        auto const isElite = finding.m_file == Rules::Finding::File::elite;
        auto const isNames = finding.m_file == Rules::Finding::File::names;
        text += isTree ? "tree" : isElite ? "elite" : isNames ? "names" : "readme";
        text += finding.m_number ? ' ' + std::to_string(*finding.m_number) : "";
        text += finding.m_condition ? '.' + std::to_string(*finding.m_condition) : "";
        text += ": " + finding.m_problem + '\n';
    }
    return text;
}

TEST(DriftTest, NoneInTheSameSet) {
    EXPECT_EQ(s_drift(s_set()), "");
}

TEST(DriftTest, NamesTheFieldsOfANode) {
    auto files = s_set();
    files.m_nodes[3].confidence = 0.95;
    files.m_nodes[3].testValue = 0;
    files.m_nodes[4].value2 = 7;
    files.m_nodes[4].children[9] = 4;
    EXPECT_EQ(s_drift(files),
              "tree 3: the test is message_id_has_dot == no in the files, not message_id_has_dot "
              "== yes\n"
              "tree 3: confidence is 0.95 in the files, not 0.1\n"
              "tree 4: the list of children is 0 0 0 0 0 0 0 0 0 4 in the files, not 0 0 0 0 0 0 0 "
              "0 0 0\n"
              "tree 4: counts is 1 7 0 in the files, not 1 0 0\n");
}

TEST(DriftTest, NamesNodesThatOnlyOneSideHas) {
    auto files = s_set();
    files.m_nodes.pop_back();
    EXPECT_EQ(s_drift(files), "tree 4: the node is missing in the files\n");
    files = s_set();
    files.m_nodes.push_back(files.m_nodes.back());
    files.m_treeTail = "x";
    EXPECT_EQ(s_drift(files), "tree 5: the node is only in the files\n"
                              "tree: the incomplete record at the end differs\n");
}

TEST(DriftTest, NamesTheFieldsAndConditionsOfARule) {
    auto files = s_set();
    auto& rule = files.m_elite->m_rules[1];
    rule.weight = 0.5;
    rule.conditions.back().test = 1;
    EXPECT_EQ(s_drift(files),
              "elite 2: the weight is 0.5 in the files, not 0.97\n"
              "elite 2.2: the condition is \"hop_behind_first != no\" in the files, not "
              "\"hop_behind_first == no\"\n");
    rule.weight = 0.97;
    rule.conditions.pop_back();
    rule.conditionCount = 1;
    EXPECT_EQ(s_drift(files), "elite 2: the number of conditions is 1 in the files, not 2\n"
                              "elite 2.2: the condition is missing in the files\n");
}

TEST(DriftTest, ARulePutInOrTakenOutInTheMiddleIsOneDifference) {
    auto files = s_set();
    auto& rules = files.m_elite->m_rules;
    rules.erase(rules.begin() + 1);
    files.m_elite->m_header->nodeCount = 2;
    EXPECT_EQ(s_drift(files), "elite 2: the rule is missing in the files\n");
    files = s_set();
    files.m_elite->m_rules.insert(files.m_elite->m_rules.begin(), files.m_elite->m_rules.back());
    files.m_elite->m_header->nodeCount = 4;
    EXPECT_EQ(s_drift(files), "elite: rule 1 of the files is not among the rules\n");
}

TEST(DriftTest, NamesTheFieldsOfTheEliteHeader) {
    auto files = s_set();
    files.m_elite->m_header->selectMode = 3;
    files.m_elite->m_header->nodeCount = 9;
    EXPECT_EQ(s_drift(files), "elite: the select mode is 3 in the files, not 1\n"
                              "elite: the announced number of rules is 9 in the files, not 3\n");
    files.m_elite.reset();
    EXPECT_EQ(s_drift(files), "elite: qv2.dt is missing there\n");
}

TEST(DriftTest, InstallingLetsTheVersionGrow) {
    auto files = s_set();
    files.setVersion(9);
    EXPECT_EQ(s_drift(files), "");
    files.setVersion(3);
    EXPECT_EQ(s_drift(files), "readme: the version is 3 in the files, not 4\n");
    files.m_readme = Rules::readmeText(4) + "More.\n";
    EXPECT_EQ(s_drift(files), "readme: the words of README differ\n");
    files.m_readme.reset();
    EXPECT_EQ(s_drift(files), "readme: README is missing there\n");
}

TEST(DriftTest, NamesTheRulesWhoseNamesDiffer) {
    using Kind = Rules::RuleKey::Kind;
    auto ours = s_set();
    auto files = s_set();
    Rules::RuleNames const names{{{Kind::decide, 9001}, {"A", "Why."}},
                                 {{Kind::adjust, 'a'}, {"B", ""}}};
    ours.m_names.m_content = files.m_names.m_content = Rules::namesText(names);
    EXPECT_TRUE(Rules::driftFindings(ours, files).empty());
    files.m_names.m_content =
        Rules::namesText({{{Kind::decide, 9001}, {"A", "Because."}}, {{Kind::node, 3}, {"C", ""}}});
    std::string text;
    for (auto const& finding : Rules::driftFindings(ours, files)) {
        EXPECT_EQ(finding.m_file, Rules::Finding::File::names);
        text += finding.m_problem + '\n';
    }
    EXPECT_EQ(text, "the name or the sentence of elite rule 9001 differs\n"
                    "the name of elite rule 'a' is missing in the files\n"
                    "the name of node 3 is only in the files\n");
    files.m_names.m_content = *ours.m_names.m_content + "# more\n";
    ASSERT_EQ(Rules::driftFindings(ours, files).size(), 1U);
    EXPECT_EQ(Rules::driftFindings(ours, files).front().m_problem, "the text of qv.names differs");
}

Bytes s_bytes(RuleSet const& set) {
    return Rules::writeTree(set) + '|' + (set.m_elite ? Rules::writeElite(*set.m_elite) : "");
}

RuleSet s_randomSet() {
    RuleSet set;
    genTree(set);
    if (*rc::gen::inRange(0, 4) != 0) {
        set.m_elite = Rules::readElite(Rules::writeElite(genElite())); // as read, not as made
    }
    return set;
}

// A byte that changes anywhere in the files is found.
RC_GTEST_PROP(DriftProperty, ThereIsDriftWhenTheBytesDiffer, ()) {
    auto const ours = s_randomSet();
    auto theirs = ours;
    auto tree = Rules::writeTree(ours);
    if (*rc::gen::arbitrary<bool>() && !tree.empty()) {
        auto const at = *rc::gen::inRange<std::size_t>(0, tree.size());
        tree[at] = *rc::gen::arbitrary<char>();
        Rules::readTree(tree, theirs);
    } else if (ours.m_elite) {
        auto elite = Rules::writeElite(*ours.m_elite);
        auto const at = *rc::gen::inRange<std::size_t>(0, elite.size());
        elite[at] = *rc::gen::arbitrary<char>();
        theirs.m_elite = Rules::readElite(elite);
    }
    RC_LOG() << Rules::ruleText(ours) << Rules::ruleText(theirs);
    auto const isSame = s_bytes(ours) == s_bytes(theirs);
    RC_ASSERT(Rules::driftFindings(ours, theirs).empty() == isSame);
}

} // namespace
} // namespace Quorvane::Testing
