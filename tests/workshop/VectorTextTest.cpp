// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/VectorText.h"

#include "rules/model/RuleError.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Workshop;

namespace {

std::string s_error(std::string_view text) {
    try {
        parseVector(text);
    } catch (Rules::RuleError const& error) {
        EXPECT_EQ(error.kind(), Rules::RuleError::Kind::badData);
        return error.what();
    }
    return "no error";
}

// Of a message with one public hop in which nothing was found.
Rules::AttributeVector s_plain() {
    Rules::AttributeVector vector{};
    for (auto const& facts : attributeTable) {
        vector[facts.m_index] = facts.m_start;
    }
    for (auto const index : {Attribute::deepHeloIsDomain, Attribute::deepHeloDynamic,
                             Attribute::deepHeloMatchesReverse, Attribute::deepReverseDynamic,
                             Attribute::deepFromMatchesReverse, Attribute::deepFromMatchesHelo}) {
        vector[index] = Code::notAnalysed;
    }
    vector[Attribute::deepSameAddress] = Code::unknown;
    return vector;
}

TEST(VectorText, LeavesWhatIsNotNamedAsAScanThatFindsNothingElse) {
    auto expected = s_plain();
    EXPECT_EQ(expected[Attribute::messageIdMatchesHelo], Code::unknown);
    EXPECT_EQ(parseVector(""), expected);
    EXPECT_EQ(parseVector("hop_behind_first=no"), expected);
    expected[Attribute::firstHeloDynamic] = Code::literal;
    expected[Attribute::hopsReverseDynamic] = 12;
    expected[Attribute::firstForged] = -3;
    EXPECT_EQ(parseVector("first_helo_dynamic=literal,hops_reverse_dynamic=12,first_forged=-3"),
              expected);
    EXPECT_EQ(parseVector(" first_helo_dynamic = 2 ,\thops_reverse_dynamic=12,first_forged=-3,"),
              expected);
}

TEST(VectorText, AHopBehindTheFirstMeansThatTheDeepHopWasAnalysed) {
    auto const vector = parseVector("hop_behind_first=yes");
    for (auto const& facts : attributeTable) {
        bool const isNamed = facts.m_index == Attribute::hopBehindFirst;
        EXPECT_EQ(vector[facts.m_index], isNamed ? Code::yes : facts.m_start) << facts.m_name;
    }
    EXPECT_EQ(parseVector("deep_helo_is_domain=no"), vector);
    EXPECT_EQ(parseVector("deep_same_address=no"), vector);
}

TEST(VectorText, WhatIsNamedComesBeforeWhatFollowsFromIt) {
    auto expected = s_plain();
    expected[Attribute::hopBehindFirst] = Code::yes;
    EXPECT_EQ(parseVector("hop_behind_first=yes,deep_helo_dynamic=not-analysed"), expected);
    EXPECT_EQ(parseVector("hop_behind_first=yes,deep_same_address=unknown"), expected);
    auto const odd = parseVector("deep_helo_dynamic=yes,deep_reverse_dynamic=not-analysed,"
                                 "hop_behind_first=no");
    EXPECT_EQ(odd[Attribute::deepHeloDynamic], Code::yes);
    EXPECT_EQ(odd[Attribute::deepReverseDynamic], Code::notAnalysed);
    EXPECT_EQ(odd[Attribute::deepHeloIsDomain], Code::no);
    EXPECT_EQ(odd[Attribute::hopBehindFirst], Code::no);
}

struct BadVector {
    char const* m_text;
    char const* m_error;
};

class VectorTextError : public testing::TestWithParam<BadVector> {};

TEST_P(VectorTextError, SaysWhatIsWrongAndWhatToDo) {
    EXPECT_EQ(s_error(GetParam().m_text), GetParam().m_error);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, VectorTextError,
    testing::Values(
        BadVector{"first_helo_dynamc=yes",
                  "no attribute is called \"first_helo_dynamc\"; \"qvrules attributes\" lists "
                  "them; did you mean \"first_helo_dynamic\"?"},
        BadVector{"first_helo_dynamic=yess",
                  "first_helo_dynamic has no value \"yess\"; it takes no, yes, literal, n/a; did "
                  "you mean \"yes\"?"},
        BadVector{"first_helo_dynamic=unknown",
                  "first_helo_dynamic has no value \"unknown\"; it takes no, yes, literal, n/a"},
        BadVector{"first_helo_dynamic=3",
                  "first_helo_dynamic has no value \"3\"; it takes no, yes, literal, n/a"},
        BadVector{"hops_reverse_dynamic=-1",
                  "hops_reverse_dynamic has no value \"-1\"; it takes a number from 0 on"},
        BadVector{"hops_reverse_dynamic=99999999999",
                  "hops_reverse_dynamic has no value \"99999999999\"; it takes a number from 0 on"},
        BadVector{"first_helo_dynamic", "\"first_helo_dynamic\" is not NAME=VALUE, as in "
                                        "first_helo_dynamic=yes,hop_behind_first=no"},
        BadVector{",", "\"\" is not NAME=VALUE, as in first_helo_dynamic=yes,hop_behind_first=no"},
        BadVector{"chain_broken=yes,chain_broken=yes", "chain_broken is given twice; keep one"}));

} // namespace
} // namespace Quorvane::Testing
