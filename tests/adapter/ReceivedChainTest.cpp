// SPDX-License-Identifier: Apache-2.0
#include "Engine.h"
#include "platform/DynamicIdentifier.h"
#include "received/MsgReceivedImpl.h"

namespace Quorvane::Testing {
namespace {

class ReceivedChainTest : public EngineTest {
  protected:
    ReceivedChainTest() {
        Telvanis::DynamicIdentifierSingleton::install(
            Telvanis::DynamicIdentifier::compile("dyn", "test patterns"));
    }
    ~ReceivedChainTest() override {
        Telvanis::DynamicIdentifierSingleton::install(Telvanis::DynamicIdentifier::builtIn());
    }

    SingleReceiver analyse(std::string const& value) {
        MsgProperties props;
        return analyse(value, props);
    }

    SingleReceiver analyse(std::string const& value, MsgProperties& props) {
        SingleReceiver slot;
        MsgReceived hop(value);
        engine().parseSingleReceiver(hop, slot, props);
        return slot;
    }
};

// A trail in short: a public address, "private" or "none" for each hop, newest first, in a chain
// without breaks.
std::string s_trail(std::vector<std::string> const& hops) {
    std::string headers;
    for (std::size_t i = 0; i < hops.size(); ++i) {
        auto const from = "h" + std::to_string(i) + ".example";
        auto const by = i == 0 ? "mx.example" : "h" + std::to_string(i - 1) + ".example";
        if (hops[i] == "none") {
            headers += "Received: from " + from + " (" + from + ") by " + by + "\n";
        } else {
            headers += received(from, from, hops[i] == "private" ? "10.0.0.1" : hops[i], by);
        }
    }
    return headers;
}

// --- runs and slots -----------------------------------------------------------------------------

struct TrailCase {
    std::vector<std::string> m_hops;
    bool m_found;
    std::vector<std::string> m_slots; // addresses of the three slots
    int m_publicRun;
    int m_maxPrivateRun;
    int m_noAddressHops;
    int m_hopBehindFirst;
};

std::string const p1 = "192.0.2.1";
std::string const p2 = "192.0.2.2";
std::string const p3 = "192.0.2.3";
std::string const p4 = "192.0.2.4";

TrailCase const trailCases[] = {
    {{}, false, {"", "", ""}, 0, 0, 0, 0},
    {{"private", "private", p1, p2, "private", p3}, true, {p1, p2, ""}, 1, 2, 0, 1},
    {{"private", "none", "private"}, false, {"", "", ""}, 0, 2, 1, 0},
    {{"none"}, false, {"", "", ""}, 0, 0, 1, 0},
    {{p1, "none", p2}, true, {p1, "", ""}, 2, 0, 1, 1},
    {{p1}, true, {p1, "", ""}, 1, 0, 0, 0},
    {{p1, p2, p3}, true, {p1, p3, p2}, 3, 0, 0, 1},
    {{p1, p2, p3, p4}, true, {p1, p4, p3}, 4, 0, 0, 1},
    {{"none", p1, p2}, true, {p1, p2, ""}, 2, 0, 1, 1},
    {{p1, "private", p2, p3}, true, {p1, "", ""}, 2, 1, 0, 1},
    {{p1, "private"}, true, {p1, "", ""}, 1, 1, 0, 1},
    {{"private", p1, "private", "private", "private"}, true, {p1, "", ""}, 1, 3, 0, 1},
    {{"private", "private", p1, "private"}, true, {p1, "", ""}, 1, 2, 0, 1},
};

TEST_F(ReceivedChainTest, TheFirstRunOfPublicHopsFillsTheSlots) {
    for (auto const& row : trailCases) {
        SCOPED_TRACE(testing::PrintToString(row.m_hops));
        auto props = fields(Message(s_trail(row.m_hops)));
        EXPECT_EQ(engine().parseFields(props), row.m_found);
        for (std::size_t slot = 0; slot < 3; ++slot) {
            EXPECT_EQ(props.receivers[slot].ip, row.m_slots[slot]) << "slot " << slot;
        }
        EXPECT_EQ(props.hopCount, static_cast<int>(row.m_hops.size()));
        EXPECT_EQ(props.publicRun, row.m_publicRun);
        EXPECT_EQ(props.maxPrivateRun, row.m_maxPrivateRun);
        EXPECT_EQ(props.noAddressHops, row.m_noAddressHops);
        EXPECT_EQ(props.attributes[37], row.m_hopBehindFirst);
        EXPECT_EQ(props.attributes[33], 0);
    }
}

TEST_F(ReceivedChainTest, OnlyTheFirstPublicHopIsAskedWhetherItIsForged) {
    Message message(s_trail({p1, p2}));
    auto const props = chain(message);
    EXPECT_EQ(props.receivers[0].isForged, 0);
    EXPECT_EQ(props.receivers[1].isForged, 3);
}

// --- the chain ----------------------------------------------------------------------------------

TEST_F(ReceivedChainTest, ARelayThatReceivedFromAnotherThanTheNextBreaksTheChain) {
    auto const headers = received("a.example", "a.example", p1, "mx.example") +
                         received("b.example", "b.example", p2, "other.example");
    EXPECT_EQ(chain(Message(headers)).attributes[33], 1);
}

TEST_F(ReceivedChainTest, ABreakInFrontOfTheFirstPublicHopDoesNotCount) {
    auto const headers = received("a.example", "a.example", "10.0.0.1", "mx.example") +
                         received("b.example", "b.example", p1, "other.example");
    EXPECT_EQ(chain(Message(headers)).attributes[33], 0);
}

TEST_F(ReceivedChainTest, AnUnreadableReceivingHostBreaksTheChain) {
    // The second header was parsed when the trail was gathered and abandons its parse each time, so
    // its receiving host is gone by now.
    auto const headers = received("a.example", "a.example", p1, "mx.example") +
                         "Received: from b c (d [192.0.2.2]) by a.example\n";
    EXPECT_EQ(chain(Message(headers)).attributes[33], 1);
}

// A hop whose fields were not read from text, which would have been lower-cased.
class HandMadeHop : public MsgReceived {
  public:
    HandMadeHop(std::string const& from, std::string const& ip, std::string const& by) {
        ReceivedFields fields;
        fields.m_isParsed = true;
        fields.m_from = from;
        fields.m_by = by;
        fields.m_address = IPAddress(ip);
        fields.m_privateIP = false;
        resetWrapper(new RefCounted<TypeAndValueImpl>(new MsgReceivedImpl(fields), false));
    }
};

TEST_F(ReceivedChainTest, NamesInTheChainAreComparedWithTheirLetterCase) {
    for (auto const* by : {"a.example", "A.example"}) {
        MsgProperties props;
        props.receivedList.push_back(HandMadeHop("a.example", p1, "mx.example"));
        props.receivedList.push_back(HandMadeHop("b.example", p2, by));
        EXPECT_TRUE(engine().parseFields(props));
        EXPECT_EQ(props.attributes[33], std::string(by) == "a.example" ? 0 : 1) << by;
    }
}

TEST_F(ReceivedChainTest, NamesOfAHopAreLoweredBeforeTheyAreJudged) {
    MsgProperties props;
    props.receivedList.push_back(HandMadeHop("MAIL.Example.COM", p1, "mx.example"));
    engine().parseFields(props);
    EXPECT_EQ(props.receivers[0].helo, "mail.example.com");
}

// --- the names of one hop -----------------------------------------------------------------------

struct HeloCase {
    char const* m_helo;
    char const* m_normalised;
    int m_isDomain;
    int m_isIP;
    int m_dynamic;
    int m_equalsIP;
};

HeloCase const heloCases[] = {
    {"mail.example.com", "mail.example.com", 1, 0, 0, 0},
    {"a.dyn.example", "a.dyn.example", 1, 0, 1, 0},
    {"dyn.example", "dyn.example", 1, 0, 0, 0}, // a single dot: never asked
    {"friend", "friend", 0, 8, 8, 0},
    {"localhost.localdomain", "localhost.localdomain", 0, 8, 8, 0},
    {"localhost", "localhost", 0, 8, 8, 0},
    {"x.localhost.example", "x.localhost.example", 0, 8, 8, 0},
    {"[192.0.2.1]", "192.0.2.1", 1, 2, 2, 2},
    {"192.0.2.1", "192.0.2.1", 1, 2, 2, 2},
    {"[192.0.2.5]", "192.0.2.5", 1, 2, 2, 0},
    {"[[192.0.2.1]]", "[192.0.2.1]", 1, 0, 0, 0}, // one bracket of each kind is removed
    {"[2001:db8::1]", "2001:db8::1", 0, 8, 8, 0}, // a literal without dot is no domain
    {"[ipv6:::ffff:192.0.2.1]", "ipv6:::ffff:192.0.2.1", 1, 2, 2, 0},
};

TEST_F(ReceivedChainTest, TheAnnouncedNameIsClassified) {
    for (auto const& row : heloCases) {
        auto const slot =
            analyse("from " + std::string(row.m_helo) + " (b.example [192.0.2.1]) by c");
        SCOPED_TRACE(row.m_helo);
        EXPECT_EQ(slot.helo, row.m_normalised);
        EXPECT_EQ(slot.heloIsDomain, row.m_isDomain);
        EXPECT_EQ(slot.heloIsIP, row.m_isIP);
        EXPECT_EQ(slot.heloDynamic, row.m_dynamic);
        EXPECT_EQ(slot.heloEqualsIP, row.m_equalsIP);
        EXPECT_EQ(slot.hasIP, 1);
        EXPECT_EQ(slot.ip, "192.0.2.1");
    }
}

TEST_F(ReceivedChainTest, AnEmptyAnnouncedNameCannotBeTold) {
    auto const slot = analyse("from (b.example [192.0.2.1]) by c");
    EXPECT_EQ(slot.heloIsDomain, 2);
    EXPECT_EQ(slot.heloIsIP, 8);
    EXPECT_EQ(slot.heloDynamic, 8);
    EXPECT_EQ(slot.heloMatchesReverse, 2);
}

struct ReverseCase {
    char const* m_reverse;
    int m_dynamic;
    int m_isDomain;
    int m_matches;
};

ReverseCase const reverseCases[] = {
    {"mail.example.com", 0, 1, 1}, {"x.dyn.example", 1, 1, 0}, {"host", 0, 0, 0},
    {"unknown", 2, 2, 2},          {"UNKNOWN", 2, 2, 2},       {"", 2, 2, 2},
};

TEST_F(ReceivedChainTest, TheReverseNameIsClassified) {
    for (auto const& row : reverseCases) {
        auto const name = std::string(row.m_reverse);
        auto const slot = analyse("from mail.example.com (" + name + (name.empty() ? "" : " ") +
                                  "[192.0.2.1]) by c");
        SCOPED_TRACE(row.m_reverse);
        EXPECT_EQ(slot.reverseDynamic, row.m_dynamic);
        EXPECT_EQ(slot.reverseIsDomain, row.m_isDomain);
        EXPECT_EQ(slot.heloMatchesReverse, row.m_matches);
    }
}

// --- the addresses ------------------------------------------------------------------------------

constexpr char plainHop[] = "from mail.example.com (mail.example.com [192.0.2.1]) by c";
constexpr char foreignHop[] = "from mail.other.example (mail.other.example [192.0.2.1]) by c";
constexpr char heloOnlyHop[] = "from mail.example.com (mail.other.example [192.0.2.1]) by c";
constexpr char noReverseHop[] = "from mail.example.com ([192.0.2.1]) by c";

TEST_F(ReceivedChainTest, WithoutAuthorNothingIsToldOfTheAuthor) {
    MsgProperties props;
    auto const slot = analyse(plainHop, props);
    EXPECT_EQ(slot.fromDomainMatchesHelo, 2);
    EXPECT_EQ(slot.fromDomainMatchesReverse, 2);
    EXPECT_EQ(slot.fromDomainMatchesBoth, 8);
    EXPECT_EQ(props.attributes[25], 2);
    EXPECT_EQ(props.attributes[22], 2);
    EXPECT_EQ(props.attributes[27], 2);
}

struct AuthorCase {
    char const* m_hop;
    int m_helo;
    int m_reverse;
    int m_both;
};

AuthorCase const authorCases[] = {
    {plainHop, 1, 1, 1}, {foreignHop, 0, 0, 0}, {heloOnlyHop, 1, 0, 0}, {noReverseHop, 1, 2, 8}};

TEST_F(ReceivedChainTest, TheAuthorsDomainIsRelatedToBothNames) {
    for (auto const& row : authorCases) {
        MsgProperties props;
        props.headerFrom = address("a@example.com");
        auto const slot = analyse(row.m_hop, props);
        SCOPED_TRACE(row.m_hop);
        EXPECT_EQ(slot.fromDomainMatchesHelo, row.m_helo);
        EXPECT_EQ(slot.fromDomainMatchesReverse, row.m_reverse);
        EXPECT_EQ(slot.fromDomainMatchesBoth, row.m_both);
        EXPECT_EQ(props.attributes[25], row.m_helo);
        EXPECT_EQ(props.attributes[22], row.m_reverse);
        EXPECT_EQ(props.attributes[27], row.m_both == 8 ? 2 : row.m_both);
    }
}

TEST_F(ReceivedChainTest, ResultsOverTheHopsStayAtYes) {
    MsgProperties props;
    props.headerFrom = address("a@example.com");
    analyse(foreignHop, props);
    EXPECT_EQ(props.attributes[25], 0);
    EXPECT_EQ(props.attributes[27], 0);
    analyse(plainHop, props);
    EXPECT_EQ(props.attributes[25], 1);
    EXPECT_EQ(props.attributes[22], 1);
    EXPECT_EQ(props.attributes[27], 1);
    analyse(foreignHop, props);
    EXPECT_EQ(props.attributes[25], 1);
    EXPECT_EQ(props.attributes[22], 1);
    EXPECT_EQ(props.attributes[27], 1);
}

TEST_F(ReceivedChainTest, TheEnvelopeSenderMustBeRelatedToBothNames) {
    struct {
        char const* m_hop;
        char const* m_sender;
        int m_matches;
    } const rows[] = {
        {plainHop, "a@example.com", 1},
        {heloOnlyHop, "a@example.com", 0},
        {foreignHop, "a@example.com", 0},
        {noReverseHop, "a@example.com", 8},
        {plainHop, "", 8},
        {"from friend (mail.example.com [192.0.2.1]) by c", "a@example.com", 8},
        {"from (mail.example.com [192.0.2.1]) by c", "a@example.com", 0},
    };
    for (auto const& row : rows) {
        MsgProperties props;
        props.envelopeFrom = address(row.m_sender);
        EXPECT_EQ(analyse(row.m_hop, props).envFromDomainMatches, row.m_matches)
            << row.m_hop << " / " << row.m_sender;
    }
}

TEST_F(ReceivedChainTest, TheMessageIdIsRelatedToTheAnnouncedAndThenTheReverseName) {
    struct {
        char const* m_hop;
        char const* m_domain;
        int m_reverse; // attribute 16
        int m_helo;    // attribute 17
    } const rows[] = {
        {plainHop, "example.com", 1, 1},
        {heloOnlyHop, "example.com", 0, 1},
        {foreignHop, "example.com", 0, 0},
        {noReverseHop, "example.com", 2, 1},
        {plainHop, "", 2, 2},
        {"from (x.y [192.0.2.1]) by c", "example.com", 2, 2},
        // The reverse name would match, but the announced one does not.
        {"from mail.other.example (mail.example.com [192.0.2.1]) by c", "example.com", 0, 0},
    };
    for (auto const& row : rows) {
        MsgProperties props;
        props.messageIdDomain = row.m_domain;
        analyse(row.m_hop, props);
        EXPECT_EQ(props.attributes[16], row.m_reverse) << row.m_hop << " / " << row.m_domain;
        EXPECT_EQ(props.attributes[17], row.m_helo) << row.m_hop << " / " << row.m_domain;
    }
}

TEST_F(ReceivedChainTest, AMessageIdOnceMatchedStaysMatched) {
    MsgProperties props;
    props.messageIdDomain = "example.com";
    analyse(plainHop, props);
    analyse(foreignHop, props);
    EXPECT_EQ(props.attributes[16], 1);
    EXPECT_EQ(props.attributes[17], 1);
}

TEST_F(ReceivedChainTest, ALaterHopsReverseNameCountsOnceAnEarlierAnnouncedNameMatched) {
    MsgProperties props;
    props.messageIdDomain = "example.com";
    analyse(noReverseHop, props);
    analyse("from mail.other.example (mail.example.com [192.0.2.1]) by c", props);
    EXPECT_EQ(props.attributes[16], 1);
}

TEST_F(ReceivedChainTest, CountersCountTheAnalysedHops) {
    MsgProperties props;
    analyse(plainHop, props);
    EXPECT_EQ(props.attributes[9], 0);
    EXPECT_EQ(props.attributes[12], 0);
    EXPECT_EQ(props.attributes[13], 0);
    EXPECT_EQ(props.attributes[2], 0);
    analyse("from friend (x.dyn.example [192.0.2.1]) by c", props);
    analyse("from friend (unknown [192.0.2.1]) by c", props);
    EXPECT_EQ(props.attributes[9], 2);
    EXPECT_EQ(props.attributes[12], 1);
    EXPECT_EQ(props.attributes[13], 1);
    EXPECT_EQ(props.attributes[2], 2);
}

} // namespace
} // namespace Quorvane::Testing
