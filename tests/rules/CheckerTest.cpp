// SPDX-License-Identifier: Apache-2.0
#include "rules/check/Checker.h"

#include "apps/settings/HostSettings.h"
#include "RuleGenerators.h"
#include "rules/check/PossibleValues.h"
#include "rules/format/RuleTests.h"
#include "rules/language/Compiler.h"
#include "rules/language/RuleText.h"
#include "support/EliteHeader.h"

#include <gtest/gtest.h>
#include <set>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

// What the rules can judge has tests of its own.
bool s_isAboutVerdicts(Finding const& finding) {
    std::string const id = finding.m_id;
    return id == "no-spam" || id == "no-ham" || id == "tree-gate";
}

// "id" or "id NUMBER" or "id NUMBER.CONDITION" of each finding, errors with a "!", on one line.
std::string s_found(RuleSet const& set, DeepHeaderSettings const& settings = programDefaults()) {
    std::string text;
    for (auto const& finding : checkRules(set, settings)) {
        if (s_isAboutVerdicts(finding)) {
            continue;
        }
        text += text.empty() ? "" : " | ";
        text += finding.m_id;
        text += finding.m_severity == Finding::Severity::error ? "!" : "";
        if (finding.m_number) {
            text += ' ' + std::to_string(*finding.m_number);
        }
        if (finding.m_condition) {
            text += '.' + std::to_string(*finding.m_condition);
        }
        EXPECT_FALSE(finding.m_problem.empty());
        EXPECT_FALSE(finding.m_advice.empty());
    }
    return text;
}

struct CheckCase {
    char const* m_name;
    // After "version 1".
    char const* m_text;
    char const* m_found;
};

class CheckerTest : public testing::TestWithParam<CheckCase> {};

TEST_P(CheckerTest, Finds) {
    auto const text = std::string("version 1\n") + GetParam().m_text;
    auto const compiled = compileRules(text);
    ASSERT_EQ(showErrors("text", text, compiled.m_errors), "");
    EXPECT_EQ(s_found(compiled.m_set), GetParam().m_found);
}

constexpr char plainTree[] = "tree { 15 == yes: confidence 0.1 support 40\n"
                             "15 == no: confidence 0.9 support 60 }\n";

std::string const s_eliteStart = std::string(plainTree) + "elite first\n";

INSTANTIATE_TEST_SUITE_P(
    Tree, CheckerTest,
    testing::Values(
        CheckCase{"NothingInGoodRules", plainTree, ""}, CheckCase{"NoTree", "", "tree-empty"},
        CheckCase{"ALeafAsRoot", "tree", "root-leaf 2"},
        CheckCase{"ASureRoot", "tree confidence 0.95 { 15 == yes: confidence 0 support 1 }",
                  "root-confidence 2"},
        CheckCase{"ATail", "tree { 15 == yes: confidence 0 support 1 }\ntree-tail \"00\"",
                  "tree-tail | unreachable 4"},
        CheckCase{"ConfidenceInPercent", "tree { 15 == yes: confidence 95 support 1 }",
                  "node-confidence 3"},
        CheckCase{"ConfidenceNan",
                  "tree { 15 == yes: confidence bits(0x7ff8000000000000) support 1 }",
                  "node-confidence 3"},
        CheckCase{"SupportBelowTheDefaultMinimum", "tree { 15 == yes: confidence 0 support 0.14 }",
                  "node-support 3"},
        CheckCase{"SupportAboveHundred", "tree { 15 == yes: confidence 0 support 101 }",
                  "node-support 3"},
        CheckCase{"CountsThatDoNotAddUp", "tree { 15 == yes: confidence 0 support 1 counts 5 2 2 }",
                  "node-count 3"},
        CheckCase{"ADeadEnd", "tree { 15 == yes: confidence 0 support 1 { } }", "dead-end 3"},
        CheckCase{"ElevenChildren",
                  "tree leaf 0 child-count 11 slots 3 3 3 3 3 3 3 3 3 3\n"
                  "node 3 15 == yes: confidence 0 support 1",
                  "child-count! 2 | unreachable 3"},
        CheckCase{"ANegativeChild", "tree { -> -1 }", "child-index! 2"},
        CheckCase{"AChildBehindTheTable", "tree { -> 500 }", "child-index! 2"},
        CheckCase{"NodeZeroAsAChild", "tree { -> 0 }", "child-index! 2"},
        CheckCase{"ChildrenBehindABadOne", "tree { -> 500\n 15 == yes: confidence 0 support 1 }",
                  "child-index! 2 | unreachable 3"},
        CheckCase{"AMissingChild", "tree { 15 == yes: confidence 0 support 1\n -> 7 }",
                  "child-missing 2"},
        CheckCase{"ARecordThatCannotDecide",
                  "tree { -> 1 }\nnode 1 15 == yes: confidence 0 support 1", "child-reserved 2"},
        CheckCase{"AnAttributeBelowZero", "tree { -1 == 0: confidence 0 support 1 }",
                  "child-attribute! 3"},
        CheckCase{"ALoop", "tree { 15 == yes: confidence 0 support 1 { -> 3 } }", "loop! 3"},
        CheckCase{"ALoopOverTheRoot",
                  "tree when 15 == yes: { 15 == yes: confidence 0 support 1 { -> 2 } }", "loop! 3"},
        CheckCase{"AnUnreachableNode",
                  "tree { 15 == yes: confidence 0 support 1 }\n"
                  "node 4 15 == no: confidence 0 support 1",
                  "unreachable 4"},
        CheckCase{"ChildrenOfALeaf",
                  "tree { 15 == yes: confidence 0 support 1 leaf 1 { 5 == 1: confidence 0 "
                  "support 1 } }",
                  "unreachable 4"},
        CheckCase{"OverlappingChildren",
                  "tree { 15 == yes: confidence 0 support 1\n 33 == yes: confidence 0 support 1 }",
                  "children-overlap 4"},
        CheckCase{"OverlapByInequality",
                  "tree { 5 != yes: confidence 0 support 1\n 5 != no: confidence 0 support 1 }",
                  "children-overlap 4"},
        CheckCase{"ChildrenThatOnlyLookAlike",
                  "tree { 33 == yes: confidence 0 support 1 { 15 == yes: confidence 0 support 1\n"
                  "15 != yes: confidence 0 support 1 } }",
                  ""},
        CheckCase{"AnImpossibleValue", "tree { 15 == 7: confidence 0 support 1 }",
                  "never-impossible 3"},
        CheckCase{"AnAlwaysZeroAttribute", "tree { 30 != 0: confidence 0 support 1 }",
                  "never-impossible 3"},
        CheckCase{"AContradictionOnThePath",
                  "tree { 15 == yes: confidence 0 support 1 { 5 == 1: confidence 0 support 1 {\n"
                  "15 == no: confidence 0 support 1 } } }",
                  "never-contradiction 5"},
        CheckCase{"AShadowedChild",
                  "tree { 15 == yes: confidence 0 support 1\n 15 == no: confidence 0 support 1\n"
                  "33 == yes: confidence 0 support 1 }",
                  "never-shadowed 5"},
        CheckCase{"TheSameTestTwice",
                  "tree { 5 == 1: confidence 0 support 1\n 5 == 1: confidence 0 support 1 }",
                  "never-shadowed 4"},
        // By one path it is entered, by the other not.
        CheckCase{"ASharedNode",
                  "tree { 15 == yes: confidence 0 support 1 { 15 == yes: confidence 0 support 1 }\n"
                  "15 == no: confidence 0 support 1 { -> 4\n 15 == no: confidence 0 support 1 } }",
                  ""}),
    [](auto const& row) { return row.param.m_name; });

struct EliteCase {
    char const* m_name;
    // After a good tree and "elite first".
    char const* m_text;
    char const* m_found;
};

class EliteCheckerTest : public testing::TestWithParam<EliteCase> {};

TEST_P(EliteCheckerTest, Finds) {
    auto const text = "version 1\n" + s_eliteStart + GetParam().m_text;
    auto const compiled = compileRules(text);
    ASSERT_EQ(showErrors("text", text, compiled.m_errors), "");
    EXPECT_EQ(s_found(compiled.m_set), GetParam().m_found);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, EliteCheckerTest,
    testing::Values(
        EliteCase{"NothingInGoodRules",
                  "adjust 0.1 code 'a' always\ndecide 1 code 9 when 5 == 1 and 6 != 1", ""},
        EliteCase{"AFlagThatDrops", "adjust 0.1 code 'a' flag 2 always", "elite-flag! 1"},
        EliteCase{"AnUnknownType", "type 3 0.1 always", "elite-type! 1"},
        EliteCase{"ALevelAboveTheDefault", "adjust 0.1 code 'a' level 2 always", "elite-level 1"},
        EliteCase{"ACodeThatCannotBeShown", "adjust 0.1 code 10 always", "elite-code 1"},
        EliteCase{"ACodeThatCountsAsNone", "decide 1 code 0 always", "elite-code 1"},
        EliteCase{"AWeightInPercent", "adjust 20 code 'a' always", "elite-weight 1"},
        EliteCase{"AConfidenceInPercent", "decide 97 code 1 always", "elite-weight 1"},
        EliteCase{"TooLittleSupport", "decide 1 code 1 support 0.1 always", "elite-support 1"},
        EliteCase{"TooMuchSupport", "decide 1 code 1 support 200 always", "elite-support 1"},
        EliteCase{"AConditionThatDrops", "decide 1 code 1 when 5 == 1 and 38 == 1",
                  "elite-condition! 1.2"},
        EliteCase{"ATestThatDrops", "decide 1 code 1 when 5 test(2) 1", "elite-condition! 1.1"},
        EliteCase{"ATestThatNeverHolds", "decide 1 code 1 when 5 test(-1) 1",
                  "elite-condition! 1.1"},
        EliteCase{"AnAttributeBelowZero", "decide 1 code 1 when -3 == 1", "elite-condition! 1.1"},
        EliteCase{"AnImpossibleValue", "decide 1 code 1 always\ndecide 1 code 2 when 15 == 8",
                  "elite-impossible! 2.1"},
        EliteCase{"AContradiction", "decide 1 code 1 when 15 == yes and 5 == 1 and 15 != yes",
                  "elite-contradiction! 1.3"}),
    [](auto const& row) { return row.param.m_name; });

INSTANTIATE_TEST_SUITE_P(
    EliteFile, CheckerTest,
    testing::Values(
        CheckCase{"AnUnknownSelectMode",
                  "elite select 5\ntree { 15 == yes: confidence 0 support 1 }", "elite-select"},
        CheckCase{"AnUnknownTreeSwitch",
                  "elite first also-tree 2\ntree { 15 == yes: confidence 0 support 1 }",
                  "elite-also-tree"},
        CheckCase{"FewerRulesThanAnnounced",
                  "elite first count 2\ntree { 15 == yes: confidence 0 support 1 }", "elite-cut!"},
        CheckCase{"ANegativeCount",
                  "elite first count -2\ntree { 15 == yes: confidence 0 support 1 }",
                  "elite-count"},
        CheckCase{"UnreadBytes",
                  "elite first\nelite-tail \"00\"\ntree { 15 == yes: confidence 0 support 1 }",
                  "elite-tail"},
        CheckCase{"ACutHeader", "elite-tail \"00\"\ntree { 15 == yes: confidence 0 support 1 }",
                  "elite-header-cut!"}),
    [](auto const& row) { return row.param.m_name; });

RuleSet s_goodSet() {
    return compileRules(std::string("version 1\n") + plainTree).m_set;
}

TEST(CheckerTest, FindsWhatTheLoaderRefuses) {
    auto set = s_goodSet();
    set.m_nodes[3].attribute = 38;
    set.m_nodes[4].test = 2;
    set.m_nodes[4].value1 = 0;
    EXPECT_EQ(s_found(set),
              "node-attribute! 3 | node-test! 4 | node-count! 4 | child-attribute! 3 | "
              "unreachable 4");
    EXPECT_TRUE(loadProblem(set).has_value());
}

TEST(CheckerTest, FindsATreeThatFillsTheTable) {
    auto set = s_goodSet();
    set.m_nodes.resize(maxTreeNodes, set.m_nodes[3]);
    EXPECT_EQ(loadProblem(set), std::nullopt);
    set.m_nodes.push_back(set.m_nodes[3]);
    EXPECT_EQ(s_found(set).substr(0, 14), "tree-too-long!");
    EXPECT_TRUE(loadProblem(set).has_value());
}

TEST(CheckerTest, FindsTooManyEliteRules) {
    auto set = s_goodSet();
    EliteNodes rule{};
    rule.type = EliteType::adjusting;
    rule.code = 'a';
    set.m_elite = EliteFile{plainEliteHeader(), {}, {}};
    set.m_elite->m_rules.assign(maxEliteNodes, rule);
    set.m_elite->m_header->nodeCount = maxEliteNodes;
    EXPECT_EQ(s_found(set), "");
    set.m_elite->m_header->nodeCount = maxEliteNodes + 1;
    EXPECT_EQ(s_found(set), "elite-too-many!");
}

TEST(CheckerTest, FindsVersionsThatHostsDoNotTakeUp) {
    auto set = s_goodSet();
    set.m_readme.reset();
    EXPECT_EQ(s_found(set), "no-version");
    set.m_readme = "hello";
    EXPECT_EQ(s_found(set), "no-version");
    set.setVersion(0);
    EXPECT_EQ(s_found(set), "version-zero");
    set.setVersion(-1);
    EXPECT_EQ(s_found(set), "version-negative");
}

TEST(CheckerTest, TheSettingsSayWhatIsLeftOut) {
    auto const set = compileRules("version 1\nelite last also-tree\n"
                                  "decide 0.5 code 1 level 2 support 30 when 33 == yes\n"
                                  "tree confidence 0.7 { 15 == yes: confidence 0.9 support 20 }")
                         .m_set;
    EXPECT_EQ(s_found(set), "elite-level 1");
    auto settings = programDefaults();
    settings.maxEliteLevel = 2;
    EXPECT_EQ(s_found(set, settings), "");
    settings.minSupport = 40.0;
    EXPECT_EQ(s_found(set, settings), "elite-support 1 | node-support 3");
    settings = programDefaults();
    settings.spamThreshold = 0.7;
    EXPECT_EQ(s_found(set, settings), "elite-level 1 | root-confidence 2");
}

// Ten children each, shared by all nodes of a level: more paths than could ever be followed.
TEST(CheckerTest, ATreeWithVeryManyPathsIsCheckedInBoundedTime) {
    auto set = s_goodSet();
    set.m_nodes.resize(103, set.m_nodes[3]);
    for (std::size_t i = treeRoot; i < 93; ++i) {
        auto& node = set.m_nodes[i];
        node.isLeaf = 0;
        node.childCount = 10;
        node.attribute = 2;
        node.test = 1;
        node.testValue = static_cast<std::int32_t>(i);
        for (std::size_t slot = 0; slot < 10; ++slot) {
            auto const level = (i + 7) / 10; // nodes 3 to 12 are level 1
            node.children[slot] = static_cast<std::int32_t>(level * 10 + 3 + slot);
        }
    }
    EXPECT_NE(s_found(set).find("children-overlap"), std::string::npos);
}

// The nodes that a walk over `values` enters, by the rules of the walk.
std::set<std::int32_t> s_walk(RuleSet const& set,
                              std::array<std::int32_t, attributeCount> const& values) {
    std::set<std::int32_t> entered;
    std::int32_t number = treeRoot;
    for (bool isGoing = true; isGoing && entered.insert(number).second;) {
        auto const& node = set.m_nodes[static_cast<std::size_t>(number)];
        isGoing = false;
        if (node.isLeaf != 0 || node.childCount > maxChildren) {
            break;
        }
        for (std::int32_t slot = 0; slot < node.childCount; ++slot) {
            auto const child = node.children[static_cast<std::size_t>(slot)];
            if (child <= 0 || !std::cmp_less(child, set.m_nodes.size())) {
                break;
            }
            auto const& next = set.m_nodes[static_cast<std::size_t>(child)];
            if (!isAttribute(next.attribute)) {
                break;
            }
            auto const value = values[static_cast<std::size_t>(next.attribute)];
            if ((value == next.testValue) == (next.test == 0)) {
                number = child;
                isGoing = true;
                break;
            }
        }
    }
    return entered;
}

std::array<std::int32_t, attributeCount> s_someMessage() {
    std::array<std::int32_t, attributeCount> values{};
    for (auto const& facts : attributeTable) {
        auto const code = *rc::gen::element(0, 1, 2, 3, 4);
        values[facts.m_index] = facts.m_values.m_isCounter || facts.m_values.m_isOpen
                                    ? code
                                    : facts.m_values.m_codes[static_cast<std::size_t>(code)];
    }
    return values;
}

RC_GTEST_PROP(CheckerPropertyTest, NoMessageEntersANodeThatIsSaidToBeOutOfReach, ()) {
    RuleSet set;
    set.m_nodes.resize(3, DTNode{});
    auto const count = *rc::gen::inRange(4, 12);
    for (std::int32_t i = 3; i < count; ++i) {
        set.m_nodes.push_back(Testing::genNode(count));
        set.m_nodes.back().attribute = *rc::gen::element(5, 15, 33);
    }
    set.m_nodes[treeRoot].childCount = 2;
    set.m_nodes[treeRoot].children = {3, 4};
    RC_LOG() << ruleText(set) << s_found(set) << '\n';
    std::set<std::int32_t> shut;
    for (auto const& finding : checkRules(set, programDefaults())) {
        std::string const id = finding.m_id;
        if (id == "unreachable" || id.substr(0, 6) == "never-") {
            shut.insert(*finding.m_number);
        }
    }
    for (int i = 0; i < 50; ++i) {
        for (auto const number : s_walk(set, s_someMessage())) {
            RC_ASSERT(shut.count(number) == 0U);
        }
    }
}

} // namespace
} // namespace Quorvane::Testing
