// SPDX-License-Identifier: Apache-2.0
//
// Decompiling and compiling gives the very bytes, for every file that an engine loads.
#include "RuleGenerators.h"
#include "rules/language/Compiler.h"
#include "rules/language/RuleText.h"
#include "rules/model/Binary.h"

#include <algorithm>

namespace Quorvane::Testing {
namespace {

// What compiling the text of `set` gives.
RuleSet s_throughText(RuleSet const& set) {
    auto const text = Rules::ruleText(set);
    auto const compiled = Rules::compileRules(text);
    RC_LOG() << text << Rules::showErrors("text", text, compiled.m_errors);
    RC_ASSERT(compiled.m_errors.empty());
    return compiled.m_set;
}

// Through bytes first, as a file would come: the reader decides what is a record and what is tail.
RuleSet s_read(RuleSet const& set) {
    RuleSet read;
    Rules::readTree(Rules::writeTree(set), read);
    read.m_readme = set.m_readme;
    if (set.m_elite) {
        read.m_elite = Rules::readElite(Rules::writeElite(*set.m_elite));
    }
    return read;
}

RC_GTEST_PROP(RoundTripTest, EveryLoadableTreeComesBackByteForByte, ()) {
    RuleSet set;
    genTree(set);
    RC_ASSERT(Rules::writeTree(s_throughText(s_read(set))) == Rules::writeTree(set));
}

RC_GTEST_PROP(RoundTripTest, EveryEliteFileComesBackByteForByte, ()) {
    RuleSet set;
    set.m_elite = genElite();
    auto const again = s_throughText(s_read(set));
    RC_ASSERT(again.m_elite.has_value());
    RC_ASSERT(Rules::writeElite(*again.m_elite) == Rules::writeElite(*set.m_elite));
}

RC_GTEST_PROP(RoundTripTest, EvenGarbageAsAnEliteFileComesBackByteForByte, ()) {
    auto const bytes = genBytes(400);
    RuleSet set;
    set.m_elite = Rules::readElite(bytes);
    RC_ASSERT(Rules::writeElite(*s_throughText(set).m_elite) == bytes);
}

RC_GTEST_PROP(RoundTripTest, EveryReadmeComesBackByteForByte, ()) {
    auto const piece =
        rc::gen::oneOf(rc::gen::element<std::string>("CF_DT_VERSION=", "12", "\n", "#", " ", "-1"),
                       rc::gen::container<std::string>(rc::gen::arbitrary<char>()));
    RuleSet set;
    set.m_readme = "";
    for (auto const& part : *rc::gen::container<std::vector<std::string>>(piece)) {
        *set.m_readme += part;
    }
    RC_ASSERT(s_throughText(set).m_readme == set.m_readme);
}

RC_GTEST_PROP(RoundTripTest, EveryFileOfNamesComesBackByteForByte, ()) {
    RuleSet set;
    genTree(set);
    set.m_elite = genElite();
    auto read = s_read(set);
    auto names = Rules::namesText(genNames(read));
    if (*rc::gen::inRange(0, 3) == 0) {
        names.insert(*rc::gen::inRange<std::size_t>(0, names.size() + 1), genBytes(20));
    }
    read.m_names.m_content = names;
    auto const again = s_throughText(read);
    RC_ASSERT(again.m_names.m_content == names);
    RC_ASSERT(Rules::writeTree(again) == Rules::writeTree(set));
    RC_ASSERT(Rules::writeElite(*again.m_elite) == Rules::writeElite(*set.m_elite));
}

bool s_hasRule(Rules::EliteFile const& elite, Rules::RuleKey const& key) {
    auto const type =
        key.m_kind == Rules::RuleKey::Kind::decide ? EliteType::deciding : EliteType::adjusting;
    return key.m_kind != Rules::RuleKey::Kind::node &&
           std::any_of(elite.m_rules.begin(), elite.m_rules.end(), [&](EliteNodes const& rule) {
               return rule.type == type && rule.code == key.m_number;
           });
}

RC_GTEST_PROP(RoundTripTest, TheNamesOfRulesThatAreThereStandAtTheRules, ()) {
    RuleSet set;
    set.m_elite = genElite();
    auto read = s_read(set);
    auto const names = genNames(read);
    bool const areAllThere = std::all_of(names.begin(), names.end(), [&read](auto const& named) {
        return s_hasRule(*read.m_elite, named.first);
    });
    read.m_names.m_content = Rules::namesText(names);
    auto const isAtTheRules = Rules::ruleText(read).find("names-file") == std::string::npos;
    RC_ASSERT(isAtTheRules == (areAllThere && !names.empty()));
}

RC_GTEST_PROP(RoundTripTest, TheTextOfATextIsTheSameText, ()) {
    RuleSet set;
    set.setVersion(*genInteger(100));
    genTree(set);
    set.m_elite = genElite();
    auto read = s_read(set);
    read.m_names.m_content = Rules::namesText(genNames(set));
    RC_ASSERT(Rules::ruleText(s_throughText(read)) == Rules::ruleText(read));
}

TEST(RoundTripTest, WhatIsMissingStaysMissing) {
    auto const compiled = Rules::compileRules(Rules::ruleText(RuleSet()));
    ASSERT_TRUE(compiled.m_errors.empty());
    EXPECT_FALSE(compiled.m_set.m_readme.has_value());
    EXPECT_FALSE(compiled.m_set.m_elite.has_value());
    EXPECT_TRUE(compiled.m_set.m_nodes.empty());
}

// The deepest tree that a file can hold, and the longest chain that a damaged file can hold.
TEST(RoundTripTest, AChainOfAllNodesComesBack) {
    for (std::size_t const count : {std::size_t{499}, std::size_t{20000}}) {
        RuleSet set;
        set.m_nodes.resize(count, DTNode{});
        for (std::size_t i = treeRoot; i < count; ++i) {
            set.m_nodes[i].value1 = 1;
            set.m_nodes[i].childCount = 1;
            set.m_nodes[i].children[0] = static_cast<std::int32_t>(i + 1);
        }
        auto const compiled = Rules::compileRules(Rules::ruleText(set));
        EXPECT_EQ(compiled.m_errors.empty(), count <= maxTreeNodes);
        if (compiled.m_errors.empty()) {
            EXPECT_EQ(Rules::writeTree(compiled.m_set), Rules::writeTree(set));
        }
    }
}

} // namespace
} // namespace Quorvane::Testing
