// SPDX-License-Identifier: Apache-2.0
#include "Engine.h"
#include "rules/format/AttributeTable.h"

#include <map>
#include <string_view>

namespace Quorvane::Testing {
namespace {

class AttributesTest : public EngineTest {
  protected:
    static void answer(std::vector<std::string> const& zoneData) {
        ResolverSettings settings;
        settings.m_mode = ResolverSettings::Mode::local;
        settings.m_zoneData = zoneData;
        Resolver::instance().configure(settings);
    }

    MsgProperties of(MsgProperties props) {
        engine().getAttributes(props);
        return props;
    }
};

TEST_F(AttributesTest, TheMessageIdDomainHasADotOrNot) {
    struct {
        char const* m_domain;
        int m_hasDot;
    } const rows[] = {{"localhost", 0}, {"example.test", 1}, {"", 0}, {".", 1}};
    for (auto const& row : rows) {
        MsgProperties props;
        props.messageIdDomain = row.m_domain;
        EXPECT_EQ(of(props).attributes[Attribute::messageIdHasDot], row.m_hasDot) << row.m_domain;
    }
}

// What tells one trail from another are its names. "P" stands for a public relay, "Q" for another
// one, "L" for a private address.
constexpr char const* trails[] = {
    "from mail.a.test (mail.a.test [P]) by mx",
    "from pc (dsl-192-0-2-1.pool.a.test [P]) by mx",
    "from mail.a.test ([P]) by mx\nReceived: from desk (desk.b.test [Q]) by mail.a.test",
    "from a (b [L]) by mx\nReceived: from mail.a.test (mail.a.test [P]) by a",
    "from mail.a.test (mail.a.test [P]) by mx\nReceived: from x (y [L]) by mail.a.test\n"
    "Received: from z (z.b.test [Q]) by x",
    "from mail.a.test (mail.b.test [P]) by mx\nReceived: from x (y [Q]) by elsewhere.test",
};

std::string s_trail(std::string_view trail, std::map<char, std::string> const& addresses) {
    std::string text = "Received: ";
    for (char const letter : trail) {
        auto const address = addresses.find(letter);
        text += address == addresses.end() ? std::string(1, letter) : address->second;
    }
    return text + "\nFrom: x@a.test\nMessage-ID: <1@a.test>\n";
}

TEST_F(AttributesTest, AJudgedIPv6TrailIsDescribedAsTheSameOverIPv4) {
    TrustedMTASetRef::install({}, {}, {}, IPv6Relays::judge);
    for (auto const* const trail : trails) {
        SCOPED_TRACE(trail);
        auto const over4 = attributes(Message(
            s_trail(trail, {{'P', "192.0.2.1"}, {'Q', "198.51.100.1"}, {'L', "10.0.0.1"}})));
        auto const over6 = attributes(Message(
            s_trail(trail, {{'P', "IPv6:2001:db8::1"}, {'Q', "2001:db8:2::1"}, {'L', "fd00::1"}})));
        EXPECT_EQ(over6.attributes, over4.attributes);
        EXPECT_EQ(over6.receivers[0].ip, "2001:db8::1");
    }
}

// It has no dot, and a full name has one.
TEST_F(AttributesTest, AnAnnouncedIPv6AddressIsNoFullNameWhateverTheRelaysAddress) {
    TrustedMTASetRef::install({}, {}, {}, IPv6Relays::judge);
    for (auto const* const relay : {"192.0.2.1", "IPv6:2001:db8::1"}) {
        auto const slot =
            chain(Message(received("[IPv6:2001:db8::1]", "unknown", relay, "mx"))).receivers[0];
        EXPECT_EQ(slot.heloIsDomain, Code::no) << relay;
        EXPECT_EQ(slot.heloDynamic, Code::notApplicable) << relay;
    }
}

struct DomainCase {
    char const* m_author;
    char const* m_envelope;
    char const* m_messageId;
    int m_authorEnvelope;  // attribute 18
    int m_authorMessageId; // attribute 19
};

DomainCase const domainCases[] = {
    {"a@example.test", "a@mail.example.test", "mail.example.test", 1, 1},
    {"a@Example.test", "a@example.test", "example.test", 0, 0},
    {"a@example.test", "a@other.test", "other.test", 0, 0},
    {"", "a@example.test", "example.test", 2, 2},
    {"a@example.test", "", "", 2, 2},
};

TEST_F(AttributesTest, TheAuthorsDomainIsRelatedToSenderAndMessageId) {
    for (auto const& row : domainCases) {
        MsgProperties props;
        props.headerFrom = address(row.m_author);
        props.envelopeFrom = address(row.m_envelope);
        props.messageIdDomain = row.m_messageId;
        auto const attributes = of(props).attributes;
        EXPECT_EQ(attributes[Attribute::fromMatchesEnvelope], row.m_authorEnvelope)
            << row.m_author << " / " << row.m_envelope;
        EXPECT_EQ(attributes[Attribute::fromMatchesMessageId], row.m_authorMessageId)
            << row.m_author;
    }
}

TEST_F(AttributesTest, TheAnnouncedNameIsLookedUpOnlyWhenItIsAName) {
    answer({"here.mail.example. A 192.0.2.1", "mx.mail.example. MX 10 here.mail.example."});
    struct {
        char const* m_helo;
        int m_heloIsIP;
        int m_resolves;
    } const rows[] = {
        {"here.mail.example", 0, 1}, {"mx.mail.example", 0, 1},
        {"gone.mail.example", 0, 0}, {"", 0, 0},
        {"here.mail.example", 2, 2}, {"here.mail.example", 8, 8},
        {"here.mail.example", 3, 3},
    };
    for (auto const& row : rows) {
        MsgProperties props;
        props.receivers[0].helo = row.m_helo;
        props.receivers[0].heloIsIP = row.m_heloIsIP;
        EXPECT_EQ(of(props).attributes[Attribute::firstHeloResolves], row.m_resolves)
            << row.m_helo << ' ' << row.m_heloIsIP;
    }
}

TEST_F(AttributesTest, TheEnvelopeSendersDomainIsLookedUp) {
    answer({"v6.mail.example. AAAA 2001:db8::1"});
    for (auto const& [sender, resolves] :
         {std::pair("a@v6.mail.example", 1), {"a@gone.example", 0}, {"", 0}}) {
        MsgProperties props;
        props.envelopeFrom = address(sender);
        EXPECT_EQ(of(props).attributes[Attribute::envelopeDomainResolves], resolves) << sender;
    }
}

TEST_F(AttributesTest, TheAnnouncedNameOfTheRecipientsDomainIsTold) {
    MsgProperties props;
    props.receivers[0].helo = "mx.example.com";
    props.recipient = address("b@example.com");
    props.envelopeFrom = address("a@example.net");
    EXPECT_EQ(of(props).attributes[Attribute::heloIsRecipientNotEnvelope], 1);
    props.envelopeFrom = address("a@example.com");
    EXPECT_EQ(of(props).attributes[Attribute::heloIsRecipientNotEnvelope], 0);
    props.recipient = address("b@example.org");
    EXPECT_EQ(of(props).attributes[Attribute::heloIsRecipientNotEnvelope], 0);
}

TEST_F(AttributesTest, TheDeepHopsAddressIsComparedWithTheFirst) {
    MsgProperties props;
    EXPECT_EQ(of(props).attributes[Attribute::deepSameAddress], 2);
    props.receivers[0].ip = "192.0.2.1";
    props.receivers[1].ip = "192.0.2.1";
    EXPECT_EQ(of(props).attributes[Attribute::deepSameAddress], 1);
    props.receivers[1].ip = "192.0.2.10";
    EXPECT_EQ(of(props).attributes[Attribute::deepSameAddress], 0);
}

// Which code of which hop stands where in the vector.
TEST_F(AttributesTest, CodesOfTheHopsAreCopiedUnchanged) {
    struct {
        std::int32_t SingleReceiver::*m_field;
        int m_first;
        int m_deep; // -1: not in the vector
    } const rows[] = {
        {&SingleReceiver::heloIsDomain, 0, 1},
        {&SingleReceiver::heloDynamic, 5, 6},
        {&SingleReceiver::heloMatchesReverse, 7, 8},
        {&SingleReceiver::reverseDynamic, 10, 11},
        {&SingleReceiver::isForged, 14, -1},
        {&SingleReceiver::fromDomainMatchesReverse, 20, 21},
        {&SingleReceiver::fromDomainMatchesHelo, 23, 24},
        {&SingleReceiver::fromDomainMatchesBoth, 26, -1},
        {&SingleReceiver::envFromDomainMatches, 28, -1},
    };
    for (auto const& row : rows) {
        MsgProperties props;
        props.receivers[0].*row.m_field = 41;
        props.receivers[1].*row.m_field = 42;
        auto const attributes = of(props).attributes;
        EXPECT_EQ(attributes[static_cast<std::size_t>(row.m_first)], 41);
        if (row.m_deep >= 0) {
            EXPECT_EQ(attributes[static_cast<std::size_t>(row.m_deep)], 42);
        }
    }
}

TEST_F(AttributesTest, WhatNobodyWritesStays0AndWhatEarlierStagesWroteStays) {
    MsgProperties props;
    for (std::size_t const index : {2U, 9U, 12U, 13U, 16U, 17U, 22U, 25U, 27U, 33U, 36U, 37U}) {
        props.attributes[index] = static_cast<std::int32_t>(100 + index);
    }
    auto const attributes = of(props).attributes;
    for (std::size_t const index : {4U, 30U, 34U, 35U}) {
        EXPECT_EQ(attributes[index], 0);
    }
    for (std::size_t const index : {2U, 9U, 12U, 13U, 16U, 17U, 22U, 25U, 27U, 33U, 36U, 37U}) {
        EXPECT_EQ(attributes[index], static_cast<std::int32_t>(100 + index));
    }
}

TEST_F(AttributesTest, EveryValueThatAScanWritesIsInTheTable) {
    auto const headers = "From: a@example.com\nMessage-ID: <1@example.com>\n" +
                         received("x.example", "unknown", "192.0.2.1", "mx.example") +
                         received("friend", "friend", "192.0.2.2", "x.example") +
                         received("[192.0.2.3]", "a.b.example", "192.0.2.3", "friend");
    auto const attributes = this->attributes(Message(headers)).attributes;
    for (auto const& facts : attributeTable) {
        EXPECT_TRUE(facts.m_values.contains(attributes[facts.m_index]))
            << facts.m_name << " = " << attributes[facts.m_index];
    }
}

} // namespace
} // namespace Quorvane::Testing
