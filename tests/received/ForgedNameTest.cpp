// SPDX-License-Identifier: Apache-2.0
//
// The forged-name test against a local zone. What a server answers, refuses or keeps to itself is
// tried in the tests of the engine's look-ups.
#include "MsgReceived.h"
#include "platform/Resolver.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

class ForgedNameTest : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        ResolverSettings settings;
        settings.m_mode = ResolverSettings::Mode::local;
        settings.m_zoneData = {
            "honest.example. A 192.0.2.1",
            "honest.example. A 192.0.2.2",
            "honest.example. AAAA 2001:db8::1",
            "elsewhere.example. A 192.0.2.99",
            "1.2.0.192.in-addr.arpa. PTR honest.example.",
        };
        Resolver::instance().configure(settings);
    }

    static bool isForged(std::string const& address, std::string name) {
        IPAddress parsed(address);
        return s_isForged(parsed, name);
    }
};

TEST_F(ForgedNameTest, ANameThatLeadsBackToTheAddressIsHonest) {
    EXPECT_FALSE(isForged("192.0.2.1", "honest.example"));
    EXPECT_FALSE(isForged("192.0.2.2", "honest.example"));
    EXPECT_FALSE(isForged("2001:db8::1", "honest.example"));
}

TEST_F(ForgedNameTest, ANameThatResolvesElsewhereIsForged) {
    EXPECT_TRUE(isForged("192.0.2.1", "elsewhere.example"));
    EXPECT_TRUE(isForged("2001:db8::2", "honest.example"));
}

TEST_F(ForgedNameTest, ANameThatDoesNotResolveIsNotForged) {
    EXPECT_FALSE(isForged("192.0.2.1", "missing.example"));
}

TEST_F(ForgedNameTest, WithoutAddressOrNameNothingIsForged) {
    EXPECT_FALSE(isForged("", "elsewhere.example"));
    EXPECT_FALSE(isForged("192.0.2.1", ""));
}

TEST_F(ForgedNameTest, TheRecordAsksOnceAndKeepsTheAnswer) {
    MsgReceived hop(std::string("from a (elsewhere.example [192.0.2.1]) by c"));
    EXPECT_EQ(hop.from(), "a");
    EXPECT_EQ(hop.isForged(), 1);
    ResolverSettings off;
    off.m_mode = ResolverSettings::Mode::off;
    Resolver::instance().configure(off);
    EXPECT_EQ(hop.isForged(), 1);
    hop.isForged(-1);
    EXPECT_EQ(hop.isForged(), 0);
    SetUpTestSuite();
}

TEST_F(ForgedNameTest, WhatWasSetIsAnsweredWithoutALookUp) {
    MsgReceived hop(std::string("from a (honest.example [192.0.2.1]) by c"));
    hop.from();
    hop.isForged(1);
    EXPECT_EQ(hop.isForged(), 1);
    hop.isForged(42);
    EXPECT_EQ(hop.isForged(), 42);
    hop.isForged(-1);
    EXPECT_EQ(hop.isForged(), 0);
}

TEST_F(ForgedNameTest, AskedBeforeAnythingIsParsedItAnswersNoAndKeepsThat) {
    MsgReceived hop(std::string("from a (elsewhere.example [192.0.2.1]) by c"));
    EXPECT_EQ(hop.isForged(), 0);
    EXPECT_EQ(hop.reverseName(), "elsewhere.example");
    EXPECT_EQ(hop.isForged(), 0);
}

TEST_F(ForgedNameTest, ReverseNameComesFromDnsOrIsEmpty) {
    IPAddress known("192.0.2.1");
    IPAddress unknown("192.0.2.77");
    std::string name = "stale";
    EXPECT_TRUE(s_getReverseName(known, name));
    EXPECT_EQ(name, "honest.example");
    EXPECT_TRUE(s_getReverseName(unknown, name));
    EXPECT_EQ(name, "");
}

} // namespace
} // namespace Quorvane::Testing
