// SPDX-License-Identifier: Apache-2.0
//
// What would have let a spam message pass: every single change of an attribute that leads to
// another verdict, and none else.
#include "adapter/RecordedScan.h"
#include "Engine.h"

#include <gmock/gmock.h>
#include <map>
#include <rapidcheck/gtest.h>
#include <sstream>

namespace Quorvane::Testing {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

DeepHeaderSettings s_settings() {
    DeepHeaderSettings settings;
    settings.spamThreshold = 0.9;
    settings.hamThreshold = 0.9;
    return settings;
}

// "5=1: none 7": attribute and value, the verdict and the node.
std::string s_picture(Alternative const& change) {
    auto const* const verdict = change.isSpam ? "spam" : change.isHam ? "ham" : "none";
    return std::to_string(change.changes.at(0).attribute) + "=" +
           std::to_string(change.changes.at(0).value) + ": " + verdict + " " +
           std::to_string(change.node);
}

class SingleChangesTest : public EngineTest {
  protected:
    // Of the record of a vector with attributes 5 and 10 as given, the others 0.
    std::optional<SingleChanges> changes(std::int32_t five, std::int32_t ten,
                                         RecordDepth depth = RecordDepth::alternatives) {
        AttributeVector vector{};
        vector[Attribute::firstHeloDynamic] = five;
        vector[Attribute::firstReverseDynamic] = ten;
        return recordJudgement(engine(), vector, s_settings(), depth).singleChanges;
    }

    std::vector<std::string> pictures(std::int32_t five, std::int32_t ten) {
        std::vector<std::string> pictures;
        auto const found = changes(five, ten);
        for (auto const& change : found.value().list) {
            pictures.push_back(s_picture(change));
        }
        EXPECT_TRUE(found->areAllTried);
        return pictures;
    }

    void writeElite(std::vector<EliteNodes> const& rules, std::int32_t mode = SelectMode::first) {
        m_rules.writeElite(eliteHeader(static_cast<std::int32_t>(rules.size()), mode, 1), rules);
    }
};

EliteCondition s_is(std::size_t attribute, std::int32_t value) {
    return {static_cast<std::int32_t>(attribute), Comparison::equals, value};
}

EliteCondition s_isNot(std::size_t attribute, std::int32_t value) {
    return {static_cast<std::int32_t>(attribute), Comparison::differs, value};
}

// --- which changes are listed -------------------------------------------------------------------

TEST_F(SingleChangesTest, EachConditionOfTheDecidingRuleStopsItAlone) {
    writeElite({deciding(
        9001, 0.97, 5.0,
        {s_is(Attribute::firstHeloDynamic, 1), s_isNot(Attribute::firstReverseDynamic, 1)})});
    EXPECT_THAT(pictures(1, 0),
                ElementsAre("5=0: none 0", "5=2: none 0", "5=8: none 0", "10=1: none 0"));
}

TEST_F(SingleChangesTest, AnotherRuleThatThenFiresKeepsTheMessageSpam) {
    writeElite(
        {deciding(9001, 0.97, 5.0,
                  {s_is(Attribute::firstHeloDynamic, 1), s_is(Attribute::firstReverseDynamic, 1)}),
         deciding(9002, 0.95, 5.0,
                  {s_isNot(Attribute::firstHeloDynamic, 1), s_isNot(Attribute::firstHeloDynamic, 8),
                   s_is(Attribute::firstReverseDynamic, 1)})});
    EXPECT_THAT(pictures(1, 1), ElementsAre("5=8: none 0", "10=0: none 0", "10=2: none 0"));
}

TEST_F(SingleChangesTest, NoneIsListedWhenOtherRulesAlwaysStepIn) {
    writeElite({deciding(9001, 0.97, 5.0, {s_is(Attribute::firstHeloDynamic, 1)}),
                deciding(9002, 0.95, 5.0, {s_is(Attribute::firstReverseDynamic, 0)})});
    EXPECT_THAT(pictures(1, 0), IsEmpty());
}

TEST_F(SingleChangesTest, TheTreeMaySayHamOrNothingThen) {
    m_rules.writeTree(treeOf({leaf(Attribute::firstReverseDynamic, 0, 0.02),
                              leaf(Attribute::firstReverseDynamic, 2, 0.5)}));
    writeElite({deciding(9001, 0.97, 5.0, {s_is(Attribute::firstReverseDynamic, 1)})});
    EXPECT_THAT(pictures(0, 1), ElementsAre("10=0: ham 3", "10=2: none 4"));
}

TEST_F(SingleChangesTest, AnAdjustingRuleThatThenFiresMayTakeTheVerdictAway) {
    writeElite({adjusting('m', -0.2, {s_is(Attribute::firstReverseDynamic, 2)}),
                deciding(9001, 0.97, 5.0, {})});
    EXPECT_THAT(pictures(0, 0), ElementsAre("10=2: none 0"));
}

TEST_F(SingleChangesTest, SpamOfTheTreeHasThemToo) {
    m_rules.writeTree(treeOf({leaf(Attribute::firstHeloDynamic, 1, 0.99),
                              leaf(Attribute::firstHeloDynamic, 2, 0.98),
                              leaf(Attribute::firstHeloDynamic, 0, 0.01)}));
    EXPECT_THAT(pictures(1, 0), ElementsAre("5=0: ham 5", "5=8: none 0"));
}

TEST_F(SingleChangesTest, ACounterIsTriedAtEveryValueThatRulesNameAndAtOneThatTheyDoNot) {
    writeElite({deciding(9001, 0.97, 5.0, {s_is(Attribute::hopsHeloNoDomain, 0)}),
                deciding(9002, 0.95, 5.0, {s_is(Attribute::hopsHeloNoDomain, 1)}),
                deciding(9003, 0.95, 5.0, {s_is(Attribute::hopsHeloNoDomain, -4)}),
                deciding(9004, 0.2, 5.0, {s_is(Attribute::hopsHeloNoDomain, 7)})});
    EXPECT_THAT(pictures(0, 0), ElementsAre("2=2: none 0", "2=7: none 0"));
}

TEST_F(SingleChangesTest, AVerdictThatIsNotSpamHasNone) {
    writeElite({deciding(9001, 0.97, 5.0, {s_is(Attribute::firstHeloDynamic, 1)})});
    EXPECT_FALSE(changes(0, 0));
    EXPECT_TRUE(changes(1, 0));
    EXPECT_FALSE(changes(1, 0, RecordDepth::steps)) << "only when asked for";
}

TEST_F(SingleChangesTest, RulesThatNameTooManyValuesAreTriedToALimit) {
    std::vector<EliteNodes> rules{deciding(9001, 0.97, 5.0, {})};
    for (std::int32_t value = 1; value <= 1200; ++value) {
        rules.push_back(deciding(9002, 0.2, 5.0, {s_is(Attribute::hopsHeloNoDomain, value)}));
    }
    writeElite(rules, SelectMode::last);
    auto const found = changes(0, 0).value();
    EXPECT_FALSE(found.areAllTried);
    EXPECT_LT(found.list.size(), 1200U);
    EXPECT_FALSE(found.list.empty());
}

// --- any rules ----------------------------------------------------------------------------------

// Small numbers, so that tests and values often meet; with counters, and the one open attribute.
rc::Gen<EliteCondition> s_anyCondition() {
    auto const attribute = rc::gen::element<std::int32_t>(
        Attribute::hopsHeloNoDomain, Attribute::firstHeloDynamic, Attribute::firstReverseDynamic,
        Attribute::firstForged, Attribute::deepHeloDynamic, Attribute::hopBehindFirst);
    return rc::gen::construct<EliteCondition>(attribute, rc::gen::inRange(0, 2),
                                              rc::gen::inRange(-1, 9));
}

std::vector<EliteCondition> s_anyConditions() {
    std::vector<EliteCondition> conditions(*rc::gen::inRange<std::size_t>(0, 4));
    std::generate(conditions.begin(), conditions.end(), [] { return *s_anyCondition(); });
    return conditions;
}

EliteNodes s_anyRule() {
    if (*rc::gen::inRange(0, 3) == 0) {
        return adjusting('m', *rc::gen::element(-0.2, 0.1), s_anyConditions());
    }
    return deciding(*rc::gen::inRange(9000, 9009), *rc::gen::element(0.97, 0.92, 0.5),
                    *rc::gen::element(5.0, 0.01), s_anyConditions());
}

// A rule that calls the vector spam, so that there is something to stop.
EliteNodes s_ruleFor(AttributeVector const& vector) {
    auto conditions = s_anyConditions();
    for (auto& condition : conditions) {
        auto const isEqual = attributeValue(vector, condition.attribute) == condition.value;
        condition.test = isEqual ? Comparison::equals : Comparison::differs;
    }
    return deciding(9100, 0.98, 5.0, conditions);
}

std::vector<DTNode> s_anyTree() {
    std::vector<DTNode> leaves;
    for (int count = *rc::gen::inRange(0, 5); count > 0; --count) {
        auto const [attribute, test, value] = *s_anyCondition();
        leaves.push_back(leaf(attribute, value, *rc::gen::element(0.99, 0.5, 0.01)));
        leaves.back().test = test;
    }
    return treeOf(leaves);
}

std::map<std::pair<std::size_t, std::int32_t>, Alternative>
s_byChange(std::vector<Alternative> const& list) {
    std::map<std::pair<std::size_t, std::int32_t>, Alternative> changes;
    for (auto const& one : list) {
        auto const& change = one.changes.at(0);
        changes[{static_cast<std::size_t>(change.attribute), change.value}] = one;
    }
    return changes;
}

// Each listed change gives the stated verdict. Each change that is not listed leaves the message
// spam, unless it is a value of a counter that stands for others.
void s_expectExactly(DeepHeaderAdapter& engine, AttributeVector const& vector,
                     SingleChanges const& found) {
    auto const listed = s_byChange(found.list);
    RC_ASSERT(listed.size() == found.list.size());
    for (auto const& facts : attributeTable) {
        bool isOneListed = false;
        bool isOneLeft = false;
        for (std::int32_t value = -2; value < 12; ++value) {
            if (!facts.m_values.contains(value) || value == vector[facts.m_index]) {
                continue;
            }
            auto changed = vector;
            changed[facts.m_index] = value;
            auto const verdict =
                recordJudgement(engine, changed, s_settings(), RecordDepth::result).verdict;
            auto const at = listed.find({facts.m_index, value});
            isOneLeft = isOneLeft || !verdict.isSpam;
            if (at == listed.end()) {
                RC_ASSERT(verdict.isSpam || facts.m_values.m_isCounter || facts.m_values.m_isOpen);
                continue;
            }
            isOneListed = true;
            RC_ASSERT(!verdict.isSpam);
            RC_ASSERT(at->second.isHam == verdict.isHam);
            RC_ASSERT(!at->second.isSpam);
            RC_ASSERT(at->second.node == verdict.node);
        }
        RC_ASSERT(isOneListed == isOneLeft);
    }
}

RC_GTEST_FIXTURE_PROP(SingleChangesTest, WhatIsListedLetsTheMessagePassAndNothingElseDoes, ()) {
    AttributeVector vector{};
    for (int count = *rc::gen::inRange(0, 6); count > 0; --count) {
        auto const [attribute, test, value] = *s_anyCondition();
        vector[static_cast<std::size_t>(attribute)] = value;
    }
    std::vector<EliteNodes> rules(*rc::gen::inRange<std::size_t>(0, 7));
    std::generate(rules.begin(), rules.end(), s_anyRule);
    rules.insert(rules.begin() + *rc::gen::inRange<std::ptrdiff_t>(0, std::ssize(rules) + 1),
                 s_ruleFor(vector));
    std::istringstream tree(treeBytes(s_anyTree()));
    std::istringstream elite(eliteBytes(
        eliteHeader(static_cast<std::int32_t>(rules.size()), *rc::gen::inRange(1, 5), 1), rules));
    DeepHeaderAdapter engine(tree, &elite);
    auto const record = recordJudgement(engine, vector, s_settings(), RecordDepth::alternatives);
    RC_PRE(record.verdict.isSpam);
    RC_ASSERT(record.singleChanges.has_value());
    RC_ASSERT(record.singleChanges->areAllTried);
    s_expectExactly(engine, vector, *record.singleChanges);
}

} // namespace
} // namespace Quorvane::Testing
