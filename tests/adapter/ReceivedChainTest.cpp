// SPDX-License-Identifier: Apache-2.0
#include "Engine.h"
#include "received/MsgReceivedImpl.h"
#include "rules/format/AttributeTable.h"

namespace Quorvane::Testing {
namespace {

using ReceivedChainTest = EngineTest;

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
        EXPECT_EQ(props.attributes[Attribute::hopBehindFirst], row.m_hopBehindFirst);
        EXPECT_EQ(props.attributes[Attribute::chainBroken], 0);
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
    EXPECT_EQ(chain(Message(headers)).attributes[Attribute::chainBroken], 1);
}

TEST_F(ReceivedChainTest, ABreakInFrontOfTheFirstPublicHopDoesNotCount) {
    auto const headers = received("a.example", "a.example", "10.0.0.1", "mx.example") +
                         received("b.example", "b.example", p1, "other.example");
    EXPECT_EQ(chain(Message(headers)).attributes[Attribute::chainBroken], 0);
}

TEST_F(ReceivedChainTest, AnUnreadableReceivingHostBreaksTheChain) {
    // The second header was parsed when the trail was gathered and abandons its parse each time, so
    // its receiving host is gone by now.
    auto const headers = received("a.example", "a.example", p1, "mx.example") +
                         "Received: from b c (d [192.0.2.2]) by a.example\n";
    EXPECT_EQ(chain(Message(headers)).attributes[Attribute::chainBroken], 1);
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
        EXPECT_EQ(props.attributes[Attribute::chainBroken], std::string(by) == "a.example" ? 0 : 1)
            << by;
    }
}

TEST_F(ReceivedChainTest, NamesOfAHopAreLoweredBeforeTheyAreJudged) {
    MsgProperties props;
    props.receivedList.push_back(HandMadeHop("MAIL.Example.COM", p1, "mx.example"));
    engine().parseFields(props);
    EXPECT_EQ(props.receivers[0].helo, "mail.example.com");
}

} // namespace
} // namespace Quorvane::Testing
