// SPDX-License-Identifier: Apache-2.0
#include "adapter/HeaderFields.h"

#include "Engine.h"
#include "received/MsgReceivedImpl.h"
#include "rules/format/AttributeTable.h"

namespace Quorvane::Testing {
namespace {

class HeaderFieldsTest : public EngineTest {
  protected:
    // The addresses of the hops that a scan of `message` judges, newest first.
    std::vector<std::string> hops(Message const& message) { return hops(fields(message)); }

    // The same with and without IPv6 relays judged; the lists of relays are those of prefixes().
    std::vector<std::string> hopsUnder(IPv6Relays ipv6, Message const& message) {
        TrustedMTASetRef::install(prefixes({"2001:db8:7::/48", "fd00:7::/32"}),
                                  prefixes({"2001:db8:a::/48"}), prefixes({"2001:db8:1::/48"}),
                                  ipv6);
        return hops(message);
    }

    static std::vector<std::string> hops(MsgProperties const& props) {
        std::vector<std::string> addresses;
        for (auto const& hop : props.receivedList) {
            auto const& address = hop.address();
            addresses.push_back(address.isNull() ? "none" : address.asString(true));
        }
        return addresses;
    }

    static void trust(std::vector<std::string> const& relays,
                      std::vector<std::string> const& antiSpam = {}) {
        TrustedMTASetRef::install(prefixes(relays), prefixes(antiSpam));
    }

    static void score(Message& message, std::string const& ip, std::int32_t score) {
        message.m_properties->receivedHeaderAnalysis().push_back({Received(IPAddress(ip)), score});
    }

    static std::vector<IPPrefix> prefixes(std::vector<std::string> const& texts) {
        std::vector<IPPrefix> parsed;
        for (auto const& text : texts) {
            parsed.push_back(IPPrefix::parse(text));
        }
        return parsed;
    }
};

std::string s_hop(std::string const& ip) {
    return received("a.example", "b.example", ip, "c.example");
}

using Hops = std::vector<std::string>;

// --- the trail ----------------------------------------------------------------------------------

TEST_F(HeaderFieldsTest, KeepsPublicPrivateAndAddresslessHopsNewestFirst) {
    EXPECT_EQ(hops(Message(s_hop("192.0.2.1") + s_hop("10.0.0.1") + "received: from a (b) by c\n" +
                           s_hop("192.0.2.2"))),
              (Hops{"192.0.2.1", "10.0.0.1", "none", "192.0.2.2"}));
}

TEST_F(HeaderFieldsTest, AnAuthenticatedSubmissionIsSkippedAndTheTrailGoesOn) {
    EXPECT_EQ(hops(Message("Received: from a (b [192.0.2.1]) (authenticated) by c\n" +
                           s_hop("192.0.2.2"))),
              (Hops{"192.0.2.2"}));
}

TEST_F(HeaderFieldsTest, ATrustedRelayIsSkippedAndTheTrailGoesOn) {
    trust({"192.0.2.0/24"});
    EXPECT_EQ(hops(Message(s_hop("192.0.2.1") + s_hop("198.51.100.1"))), (Hops{"198.51.100.1"}));
}

TEST_F(HeaderFieldsTest, APrivateRelayIsKeptEvenWhenItIsTrusted) {
    trust({"10.0.0.0/8"});
    EXPECT_EQ(hops(Message(s_hop("10.0.0.1") + s_hop("198.51.100.1"))),
              (Hops{"10.0.0.1", "198.51.100.1"}));
}

TEST_F(HeaderFieldsTest, ATrustedAntiSpamRelayEndsTheTrail) {
    trust({}, {"192.0.2.1"});
    EXPECT_EQ(hops(Message(s_hop("198.51.100.1") + s_hop("192.0.2.1") + s_hop("198.51.100.2"))),
              (Hops{"198.51.100.1"}));
}

TEST_F(HeaderFieldsTest, ANewestHopFromAnAntiSpamRelayLeavesNothingToJudge) {
    trust({}, {"192.0.2.1"});
    Message message(s_hop("192.0.2.1") + s_hop("198.51.100.2"));
    EXPECT_EQ(hops(message), Hops{});
    auto props = fields(message);
    EXPECT_FALSE(engine().parseFields(props));
}

TEST_F(HeaderFieldsTest, AnAntiSpamRelayAtAPrivateAddressEndsTheTrailToo) {
    trust({}, {"10.0.0.1"});
    EXPECT_EQ(hops(Message(s_hop("10.0.0.1") + s_hop("198.51.100.2"))), Hops{});
}

TEST_F(HeaderFieldsTest, AnIPv6RelayEndsTheTrailEvenWhenItIsTrusted) {
    trust({"2001:db8::/32"});
    EXPECT_EQ(hops(Message(s_hop("192.0.2.1") + s_hop("IPv6:2001:db8::1") + s_hop("192.0.2.2"))),
              (Hops{"192.0.2.1"}));
}

TEST_F(HeaderFieldsTest, HeadersBehindTheEndOfTheTrailAreStillRead) {
    auto const props = fields(Message(s_hop("IPv6:2001:db8::1") + "From: x@example.com\n"));
    EXPECT_EQ(props.headerFrom.domain(), "example.com");
}

// --- the site's own newest relays ---------------------------------------------------------------

struct InternalCase {
    char const* m_why;
    std::string m_headers;
    Hops m_hops;
};

TEST_F(HeaderFieldsTest, TheNewestHopsThatCameFromInternalRelaysAreSkipped) {
    InternalCase const cases[] = {
        {"none of ours", s_hop("192.0.2.1") + s_hop("10.0.0.1"), {"192.0.2.1", "10.0.0.1"}},
        {"the newest one", s_hop("10.0.0.1") + s_hop("192.0.2.1"), {"192.0.2.1"}},
        {"two, one by IPv6",
         s_hop("2001:db8::1") + s_hop("10.0.0.1") + s_hop("192.0.2.1"),
         {"192.0.2.1"}},
        {"one after a stranger stays",
         s_hop("10.0.0.1") + s_hop("192.0.2.1") + s_hop("10.0.0.2"),
         {"192.0.2.1", "10.0.0.2"}},
        {"one after a hop without address stays",
         "Received: by mx (Postfix, from userid 1000)\n" + s_hop("10.0.0.1"),
         {"none", "10.0.0.1"}},
        {"one after an authenticated stranger stays",
         "Received: from a (b [192.0.2.1]) (authenticated) by c\n" + s_hop("10.0.0.1"),
         {"10.0.0.1"}},
        {"an authenticated one of ours",
         "Received: from a (b [198.51.100.7]) (authenticated) by c\n" + s_hop("192.0.2.1"),
         {"192.0.2.1"}},
        {"all of them", s_hop("10.0.0.1") + s_hop("10.0.0.2"), {}},
        {"other headers between them",
         "From: a@b\n" + s_hop("10.0.0.1") + "To: c@d\n" + s_hop("198.51.100.7") +
             s_hop("192.0.2.1"),
         {"192.0.2.1"}},
    };
    TrustedMTASetRef::install({}, {}, prefixes({"10.0.0.0/8", "2001:db8::/32", "198.51.100.7"}));
    for (auto const& row : cases) {
        EXPECT_EQ(hops(Message(row.m_headers)), row.m_hops) << row.m_why;
    }
}

TEST_F(HeaderFieldsTest, AnInternalRelayThatFiltersOrHasAScoreIsSkippedAllTheSame) {
    TrustedMTASetRef::install({}, prefixes({"10.0.0.1"}), prefixes({"10.0.0.0/8", "198.51.100.7"}));
    Message message(s_hop("10.0.0.1") + s_hop("198.51.100.7") + s_hop("192.0.2.1"));
    score(message, "198.51.100.7", 9);
    EXPECT_EQ(hops(message), (Hops{"192.0.2.1"}));
}

TEST_F(HeaderFieldsTest, TheHopAboutToBeAddedComesBeforeThoseOfTheMessage) {
    TrustedMTASetRef::install({}, {}, prefixes({"10.0.0.0/8"}));
    Message message(s_hop("10.0.0.1") + s_hop("192.0.2.1"));
    message.m_currentReceived = Header("Received", "from a (b [10.0.0.9]) by mx");
    EXPECT_EQ(hops(message), (Hops{"192.0.2.1"}));
    message.m_currentReceived = Header("Received", "from a (b [192.0.2.9]) by mx");
    EXPECT_EQ(hops(message), (Hops{"192.0.2.9", "10.0.0.1", "192.0.2.1"}));
}

// --- IPv6 relays --------------------------------------------------------------------------------

struct V6WalkCase {
    char const* m_why;
    std::string m_headers;
    Hops m_stopped;
    Hops m_judged;
};

// Trusted: 2001:db8:7::/48 and fd00:7::/32; filters already: 2001:db8:a::/48; the site's own:
// 2001:db8:1::/48.
V6WalkCase const v6WalkCases[] = {
    {"the newest", s_hop("2001:db8::1") + s_hop("192.0.2.1"), {}, {"2001:db8::1", "192.0.2.1"}},
    {"a tagged literal", s_hop("IPv6:2001:db8::1"), {}, {"2001:db8::1"}},
    {"between others",
     s_hop("192.0.2.1") + s_hop("2001:db8::1") + s_hop("192.0.2.2"),
     {"192.0.2.1"},
     {"192.0.2.1", "2001:db8::1", "192.0.2.2"}},
    {"the oldest",
     s_hop("10.0.0.1") + s_hop("192.0.2.1") + s_hop("2001:db8::1"),
     {"10.0.0.1", "192.0.2.1"},
     {"10.0.0.1", "192.0.2.1", "2001:db8::1"}},
    {"an IPv4 address in IPv6 form is IPv4",
     s_hop("IPv6:::ffff:192.0.2.1") + s_hop("192.0.2.2"),
     {"192.0.2.1", "192.0.2.2"},
     {"192.0.2.1", "192.0.2.2"}},
    {"private: loopback, unique local, link local, unspecified",
     s_hop("::1") + s_hop("fd12::1") + s_hop("fe80::1") + s_hop("::") + s_hop("192.0.2.1"),
     {},
     {"::1", "fd12::1", "fe80::1", "::", "192.0.2.1"}},
    {"trusted", s_hop("2001:db8:7::1") + s_hop("192.0.2.1"), {}, {"192.0.2.1"}},
    {"trusted and private",
     s_hop("fd00:7::1") + s_hop("192.0.2.1"),
     {},
     {"fd00:7::1", "192.0.2.1"}},
    {"one that filters ends the walk under both",
     s_hop("192.0.2.1") + s_hop("2001:db8:a::1") + s_hop("192.0.2.2"),
     {"192.0.2.1"},
     {"192.0.2.1"}},
    {"the site's own are skipped under both",
     s_hop("2001:db8:1::1") + s_hop("2001:db8:1::2") + s_hop("192.0.2.1"),
     {"192.0.2.1"},
     {"192.0.2.1"}},
    {"the site's own, then a stranger by IPv6",
     s_hop("2001:db8:1::1") + s_hop("2001:db8::1") + s_hop("2001:db8:1::2"),
     {},
     {"2001:db8::1", "2001:db8:1::2"}},
    {"authenticated ones are skipped under both",
     "Received: from a (b [IPv6:2001:db8::1]) (authenticated) by c\n" + s_hop("192.0.2.1"),
     {"192.0.2.1"},
     {"192.0.2.1"}},
    {"no address",
     "Received: from a (b) by c\n" + s_hop("2001:db8::1"),
     {"none"},
     {"none", "2001:db8::1"}},
    {"no address that could be one",
     s_hop("2001:db8::g") + s_hop("192.0.2.1"),
     {"none", "192.0.2.1"},
     {"none", "192.0.2.1"}},
};

TEST_F(HeaderFieldsTest, AnIPv6RelayIsLikeAnyOtherWhenThoseAreJudged) {
    for (auto const& row : v6WalkCases) {
        Message const message(row.m_headers);
        EXPECT_EQ(hopsUnder(IPv6Relays::stop, message), row.m_stopped) << row.m_why;
        EXPECT_EQ(hopsUnder(IPv6Relays::judge, message), row.m_judged) << row.m_why;
    }
}

TEST_F(HeaderFieldsTest, TheReputationOfAJudgedIPv6RelayEndsTheTrail) {
    Message message(s_hop("192.0.2.1") + s_hop("IPv6:2001:db8::1") + s_hop("192.0.2.2"));
    score(message, "2001:db8::1", 7);
    EXPECT_EQ(hopsUnder(IPv6Relays::judge, message), (Hops{"192.0.2.1"}));
    EXPECT_EQ(fields(message).scoredHopIP, "2001:db8::1");
    hopsUnder(IPv6Relays::stop, message);
    EXPECT_EQ(fields(message).scoredHopIP, "") << "the walk ended before anybody asked";
}

// --- reputation ---------------------------------------------------------------------------------

TEST_F(HeaderFieldsTest, RelaysThatTheListDoesNotNameAreScoredByTheTable) {
    Message message(s_hop("192.0.2.1") + s_hop("198.51.100.1") + s_hop("192.0.2.2"));
    auto& analysis = message.m_properties->receivedHeaderAnalysis();
    std::vector<ReputationTable::Entry> const entries{{IPPrefix::parse("198.51.100.0/24"), 7},
                                                      {IPPrefix::parse("192.0.2.0/24"), 7}};
    analysis.reputation(std::make_shared<ReputationTable const>(entries));
    EXPECT_EQ(hops(message), Hops{});
    score(message, "192.0.2.1", 1);
    auto const props = fields(message);
    EXPECT_EQ(hops(props), (Hops{"192.0.2.1"})) << "the list comes first";
    EXPECT_EQ(props.scoredHopIP, "198.51.100.1");
    EXPECT_EQ(props.scoredHopScore, 7);
    EXPECT_EQ(s_getTVAS(analysis, "203.0.113.1"), 0);
}

struct ScoreCase {
    std::int32_t m_score;
    std::int32_t m_threshold;
    bool m_endsTrail;
};

ScoreCase const scoreCases[] = {
    {5, 6, false},  {6, 6, true}, {9, 6, true},  {10, 6, false},  {-1, 6, false},
    {0, 6, false},  {0, 0, true}, {9, 0, true},  {9, -1, false},  {0, -1, false},
    {9, 10, false}, {9, 9, true}, {8, 9, false}, {11, 10, false},
};

TEST_F(HeaderFieldsTest, ARelaysScoreFromTheThresholdTo9EndsTheTrail) {
    for (auto const& row : scoreCases) {
        Message message(s_hop("198.51.100.1") + s_hop("192.0.2.1") + s_hop("192.0.2.2"));
        message.m_settings.scoreThreshold = row.m_threshold;
        score(message, "198.51.100.1", row.m_threshold == 0 ? 10 : 0);
        score(message, "192.0.2.1", row.m_score);
        score(message, "192.0.2.2", 10);
        auto const props = fields(message);
        SCOPED_TRACE(testing::Message() << row.m_score << " against " << row.m_threshold);
        EXPECT_EQ(props.scoredHopFound, row.m_endsTrail ? 1 : 0);
        EXPECT_EQ(props.scoredHopIP, row.m_endsTrail ? "192.0.2.1" : "");
        EXPECT_EQ(props.scoredHopScore, row.m_endsTrail ? row.m_score : 0);
        EXPECT_EQ(hops(props), row.m_endsTrail ? (Hops{"198.51.100.1"})
                                               : (Hops{"198.51.100.1", "192.0.2.1", "192.0.2.2"}));
    }
}

TEST_F(HeaderFieldsTest, AThresholdOf0EndsTheTrailAtTheFirstPublicHop) {
    Message message(s_hop("10.0.0.1") + s_hop("192.0.2.1"));
    message.m_settings.scoreThreshold = 0;
    EXPECT_EQ(hops(message), (Hops{"10.0.0.1"}));
}

TEST_F(HeaderFieldsTest, APrivateHopIsNeverScored) {
    Message message(s_hop("10.0.0.1"));
    score(message, "10.0.0.1", 9);
    EXPECT_EQ(fields(message).scoredHopFound, 0);
}

TEST_F(HeaderFieldsTest, AScoreIsThatOfTheFirstEntryWithExactlyThatAddress) {
    ReceivedHeaderAnalysis analysis;
    EXPECT_EQ(s_getTVAS(analysis, "192.0.2.1"), 0);
    analysis.push_back({Received(), 9});
    analysis.push_back({Received(IPAddress("192.0.2.10")), 8});
    analysis.push_back({Received(IPAddress("192.0.2.1")), 7});
    analysis.push_back({Received(IPAddress("192.0.2.1")), 6});
    EXPECT_EQ(s_getTVAS(analysis, "192.0.2.1"), 7);
    EXPECT_EQ(s_getTVAS(analysis, "192.0.2.2"), 0);
    EXPECT_EQ(s_getTVAS(analysis, ""), 0);
}

// The walk finds scores in another way than s_getTVAS.
TEST_F(HeaderFieldsTest, OfManyRelaysTheFirstEntryWithAnAddressCounts) {
    Message message(s_hop("192.0.2.1") + s_hop("192.0.2.2") + s_hop("192.0.2.3"));
    auto& analysis = message.m_properties->receivedHeaderAnalysis();
    analysis.push_back({Received(), 9});
    for (int i = 255; i > 0; --i) {
        IPAddress const relay("192.0.2." + std::to_string(i));
        analysis.push_back({Received(relay), i == 2 ? 7 : 0});
        analysis.push_back({Received(relay), 8});
    }
    auto const props = fields(message);
    EXPECT_EQ(hops(props), (Hops{"192.0.2.1"}));
    EXPECT_EQ(props.scoredHopIP, "192.0.2.2");
    EXPECT_EQ(props.scoredHopScore, s_getTVAS(analysis, "192.0.2.2"));
}

// --- the hop at hand ----------------------------------------------------------------------------

Message s_withCurrentHop(std::string const& ip) {
    Message message(s_hop("198.51.100.1"));
    message.m_currentReceived = Header("Received", "from a (b [" + ip + "]) by c");
    return message;
}

TEST_F(HeaderFieldsTest, TheCurrentHopComesFirstWithTheHostsForgedFlag) {
    auto message = s_withCurrentHop("192.0.2.1");
    message.m_currentIsForged = 1;
    auto const props = fields(message);
    EXPECT_EQ(hops(props), (Hops{"192.0.2.1", "198.51.100.1"}));
    EXPECT_EQ(ReceivedAccess::fields(props.receivedList.front())->m_forged, 1);
    EXPECT_EQ(ReceivedAccess::fields(props.receivedList.back())->m_forged, -1);
}

TEST_F(HeaderFieldsTest, ACurrentHopWithoutAddressIsKept) {
    Message message(s_hop("198.51.100.1"));
    message.m_currentReceived = Header("Received", "from a by c");
    message.m_currentIsForged = 1;
    auto const props = fields(message);
    EXPECT_EQ(hops(props), (Hops{"none", "198.51.100.1"}));
    EXPECT_EQ(ReceivedAccess::fields(props.receivedList.front())->m_forged, 1);
}

TEST_F(HeaderFieldsTest, ACurrentHopIsNotTestedForAuthenticationOrAPrivateAddress) {
    Message message;
    message.m_currentReceived = Header("Received", "from a (b [192.0.2.1]) (authenticated) by c");
    EXPECT_EQ(hops(message), (Hops{"192.0.2.1"}));
    EXPECT_EQ(hops(s_withCurrentHop("10.0.0.1")), (Hops{"10.0.0.1", "198.51.100.1"}));
}

TEST_F(HeaderFieldsTest, ACurrentHopFromATrustedRelayIsSkippedPrivateOnesToo) {
    trust({"192.0.2.1", "10.0.0.1"});
    EXPECT_EQ(hops(s_withCurrentHop("192.0.2.1")), (Hops{"198.51.100.1"}));
    EXPECT_EQ(hops(s_withCurrentHop("10.0.0.1")), (Hops{"198.51.100.1"}));
}

TEST_F(HeaderFieldsTest, ACurrentHopFromAnAntiSpamOrIPv6RelayLeavesNothing) {
    trust({}, {"192.0.2.1"});
    EXPECT_EQ(hops(s_withCurrentHop("192.0.2.1")), Hops{});
    EXPECT_EQ(hops(s_withCurrentHop("2001:db8::1")), Hops{});
}

TEST_F(HeaderFieldsTest, ACurrentHopFromAnIPv6RelayIsJudgedByItsClientsScore) {
    auto message = s_withCurrentHop("IPv6:2001:db8::1");
    EXPECT_EQ(hopsUnder(IPv6Relays::stop, message), Hops{});
    EXPECT_EQ(hopsUnder(IPv6Relays::judge, message), (Hops{"2001:db8::1", "198.51.100.1"}));
    EXPECT_EQ(hopsUnder(IPv6Relays::judge, s_withCurrentHop("2001:db8:7::1")),
              (Hops{"198.51.100.1"}));
    message.m_properties->clientScore(6);
    EXPECT_EQ(hopsUnder(IPv6Relays::judge, message), Hops{});
    EXPECT_EQ(fields(message).scoredHopIP, "2001:db8::1");
}

TEST_F(HeaderFieldsTest, TheCurrentHopsScoreIsTheClientsNotTheTrails) {
    for (auto const& row : scoreCases) {
        auto message = s_withCurrentHop("192.0.2.1");
        message.m_settings.scoreThreshold = row.m_threshold;
        message.m_properties->clientScore(static_cast<std::uint32_t>(row.m_score));
        score(message, "192.0.2.1", 9);
        score(message, "198.51.100.1", 10);
        auto const props = fields(message);
        SCOPED_TRACE(testing::Message() << row.m_score << " against " << row.m_threshold);
        EXPECT_EQ(props.scoredHopFound, row.m_endsTrail ? 1 : 0);
        EXPECT_EQ(props.scoredHopIP, row.m_endsTrail ? "192.0.2.1" : "");
        EXPECT_EQ(hops(props), row.m_endsTrail ? Hops{} : (Hops{"192.0.2.1", "198.51.100.1"}));
    }
}

TEST_F(HeaderFieldsTest, AScoredPrivateCurrentHopEndsTheTrail) {
    auto message = s_withCurrentHop("10.0.0.1");
    message.m_properties->clientScore(6);
    EXPECT_EQ(hops(message), Hops{});
}

// --- addresses ----------------------------------------------------------------------------------

TEST_F(HeaderFieldsTest, TakesTheAddressesFromTheHeadersWhenNoneWasGiven) {
    auto const props = fields(Message("From: <a@author.example>\nTo: b@recipient.example\n"
                                      "Return-Path: <c@sender.example>\n"));
    EXPECT_EQ(props.headerFrom.domain(), "author.example");
    EXPECT_EQ(props.recipient.domain(), "recipient.example");
    EXPECT_EQ(props.envelopeFrom.domain(), "sender.example");
}

TEST_F(HeaderFieldsTest, TheLastAuthorAndRecipientCountAndTheFirstEnvelopeSender) {
    auto const props =
        fields(Message("FROM: a@first.example\nfrom: a@last.example\n"
                       "To: b@first.example\nTO: b@last.example\n"
                       "Return-Path: <c@first.example>\nX-QV-ORIG-ENV-FROM: <c@last.example>\n"));
    EXPECT_EQ(props.headerFrom.domain(), "last.example");
    EXPECT_EQ(props.recipient.domain(), "last.example");
    EXPECT_EQ(props.envelopeFrom.domain(), "first.example");
}

TEST_F(HeaderFieldsTest, TheOriginalEnvelopeSenderCountsWhenItComesFirst) {
    auto const props =
        fields(Message("x-qv-orig-env-from: <c@orig.example>\nReturn-Path: <c@path.example>\n"));
    EXPECT_EQ(props.envelopeFrom.domain(), "orig.example");
}

TEST_F(HeaderFieldsTest, ANullReturnPathLeavesRoomForALaterSender) {
    auto const props = fields(Message("Return-Path: <>\nX-QV-ORIG-ENV-FROM: <c@orig.example>\n"));
    EXPECT_EQ(props.envelopeFrom.domain(), "orig.example");
}

TEST_F(HeaderFieldsTest, ALaterBrokenAuthorReplacesAGoodOne) {
    EXPECT_TRUE(fields(Message("From: a@first.example\nFrom: nobody\n")).headerFrom.isNull());
}

TEST_F(HeaderFieldsTest, AnyGivenAddressKeepsTheHeadersOut) {
    std::string const headers = "From: a@header.example\nTo: b@header.example\n"
                                "Return-Path: <c@header.example>\n";
    for (EmailAddress Message::*const given :
         {&Message::m_from, &Message::m_headerFrom, &Message::m_recipient}) {
        Message message(headers);
        message.*given = address("x@given.example");
        auto const props = fields(message);
        EXPECT_EQ(props.envelopeFrom.domain(), given == &Message::m_from ? "given.example" : "");
        EXPECT_EQ(props.headerFrom.domain(),
                  given == &Message::m_headerFrom ? "given.example" : "");
        EXPECT_EQ(props.recipient.domain(), given == &Message::m_recipient ? "given.example" : "");
    }
}

// --- Message-ID ---------------------------------------------------------------------------------

struct MessageIdCase {
    char const* m_headers;
    char const* m_domain;
};

MessageIdCase const messageIdCases[] = {
    {"Message-ID: <id@Mail.Example.COM>\n", "mail.example.com"},
    {"message-id: <id@example.com>\n", "example.com"},
    {"Message-ID: no at-sign\n", ""},
    {"Message-ID: <id@example.com> (comment)\n", "example.com"},
    {"Message-ID: id@example.com\n", "example.com"},
    {"Message-ID: <id@a.example@b.example>\n", "a.example@b.example"},
    {"Message-ID: <id@>\n", ""},
    {"Message-ID: <id>@late.example\n", "late.example"},
    {"Message-ID: id@\n", ""},
    {"Message-ID: <1@first.example>\nMessage-ID: <2@second.example>\n", "second.example"},
    {"Message-ID: <1@first.example>\nMessage-ID: none\n", ""},
    {"Message-ID:\n <folded@example.com>\n", "example.com"},
};

TEST_F(HeaderFieldsTest, TheMessageIdDomainIsWhatFollowsTheFirstAtSign) {
    for (auto const& row : messageIdCases) {
        EXPECT_EQ(fields(Message(row.m_headers)).messageIdDomain, row.m_domain) << row.m_headers;
    }
}

TEST_F(HeaderFieldsTest, TheMessageIdIsReadAlsoWhenAddressesWereGiven) {
    Message message("Message-ID: <id@example.com>\n");
    message.m_from = address("x@given.example");
    EXPECT_EQ(fields(message).messageIdDomain, "example.com");
}

// --- status -------------------------------------------------------------------------------------

TEST_F(HeaderFieldsTest, OnlyStatus3IsIndicated) {
    for (std::int32_t const status : {0, 1, 2, 3, 4, -3}) {
        Message message;
        message.m_properties->status(status);
        EXPECT_EQ(fields(message).attributes[Attribute::statusIndicated], status == 3 ? 1 : 0);
    }
}

} // namespace
} // namespace Quorvane::Testing
