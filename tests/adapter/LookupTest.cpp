// SPDX-License-Identifier: Apache-2.0
//
// The scan's DNS look-ups against a real server: what it answers, what it refuses, what it cannot
// answer and what it keeps to itself.
#include "Engine.h"
#include "received/MsgReceivedImpl.h"
#include "rules/format/AttributeTable.h"
#include "support/DnsServer.h"
#include "support/HostileDnsServer.h"
#include "support/LateDnsServer.h"
#include "support/SilentDnsServer.h"

namespace Quorvane::Testing {
namespace {

class LookupTest : public EngineTest {
  protected:
    static void SetUpTestSuite() {
        s_server = std::make_unique<DnsServer>(std::vector<DnsZone>{
            {"here.test", "honest A 192.0.2.7\nelsewhere A 192.0.2.99\nmail MX 10 honest\n"
                          "v6 AAAA 2001:db8::7\ntext TXT \"no mail here\"\n"},
            {"broken.test", "", true},
        });
    }
    static void TearDownTestSuite() { s_server.reset(); }

    LookupTest() { ask(s_server->address()); }
    ~LookupTest() override { ask(""); }

    static void ask(std::string const& server,
                    std::chrono::milliseconds deadline = std::chrono::seconds(20)) {
        ResolverSettings settings;
        settings.m_mode =
            server.empty() ? ResolverSettings::Mode::off : ResolverSettings::Mode::servers;
        if (!server.empty()) {
            settings.m_servers = {server};
        }
        settings.m_deadline = deadline;
        Resolver::instance().configure(settings);
    }

    // The vector of a message whose only hop announces `helo` and has the reverse name `reverse`.
    MsgProperties judge(std::string const& helo, std::string const& reverse,
                        std::string const& sender) {
        Message message(received(helo, reverse, "192.0.2.7", "mx.test"));
        message.m_from = address(sender);
        return attributes(message);
    }

    // The same without a reverse name, which would be looked up too.
    MsgProperties judgeNameless(std::string const& helo, std::string const& sender) {
        Message message("Received: from " + helo + " ([192.0.2.7]) by mx.test\n");
        message.m_from = address(sender);
        return attributes(message);
    }

    // Look-ups so far that failed or came late.
    static std::uint64_t unanswered() {
        auto const counters = Resolver::instance().counters();
        return counters.m_failed + counters.m_late;
    }

    static std::unique_ptr<DnsServer> s_server;
};

std::unique_ptr<DnsServer> LookupTest::s_server;

struct LookupCase {
    char const* m_name;
    int m_isForged; // as reverse name of 192.0.2.7
    int m_resolves; // as announced name, and as sender's domain
};

LookupCase const lookupCases[] = {
    {"honest.here.test", 0, 1}, {"elsewhere.here.test", 1, 1}, {"mail.here.test", 0, 1},
    {"v6.here.test", 1, 1},     {"text.here.test", 0, 0},      {"gone.here.test", 0, 0},
    {"name.broken.test", 0, 0}, {"name.refused.test", 0, 0},   {"honest.here.test.", 0, 1},
};

TEST_F(LookupTest, NamesAreForgedOrResolveAsTheServerSays) {
    for (auto const& row : lookupCases) {
        auto const name = std::string(row.m_name);
        auto const props = judge(name, name, "a@" + name);
        SCOPED_TRACE(name);
        EXPECT_EQ(props.attributes[Attribute::firstForged], row.m_isForged);
        EXPECT_EQ(props.attributes[Attribute::firstHeloResolves], row.m_resolves);
    }
}

TEST_F(LookupTest, TheReverseNameOfAJudgedIPv6RelayIsForgedUnlessItHasThatAddress) {
    TrustedMTASetRef::install({}, {}, {}, IPv6Relays::judge);
    auto const isForged = [this](std::string const& name) {
        return attributes(Message(received("x", name, "IPv6:2001:db8::7", "mx.test")))
            .attributes[Attribute::firstForged];
    };
    EXPECT_EQ(isForged("v6.here.test"), 0);
    EXPECT_EQ(isForged("honest.here.test"), 1) << "it has an IPv4 address only";
    EXPECT_EQ(isForged("gone.here.test"), 0);
}

TEST_F(LookupTest, TheSendersDomainResolvesAsTheServerSays) {
    for (auto const& row : lookupCases) {
        auto const name = std::string(row.m_name);
        if (name.back() == '.') {
            continue; // no address ends in a dot
        }
        EXPECT_EQ(judge("x", "unknown", "a@" + name).attributes[Attribute::envelopeDomainResolves],
                  row.m_resolves)
            << name;
    }
}

TEST_F(LookupTest, AFailedLookUpIsCountedAndSaysNothingAgainstTheMessage) {
    auto const before = Resolver::instance().counters();
    auto const props = judge("a.broken.test", "b.refused.test", "a@c.broken.test");
    EXPECT_EQ(props.attributes[Attribute::firstForged], 0);
    EXPECT_EQ(props.attributes[Attribute::firstHeloResolves], 0);
    EXPECT_EQ(props.attributes[Attribute::envelopeDomainResolves], 0);
    EXPECT_GT(Resolver::instance().counters().m_failed, before.m_failed);
}

// The server fails for AAAA records below bad.test: the machine's address may be among them.
TEST_F(LookupTest, AReverseNameIsForgedOnlyWhenAllItsAddressesAreKnown) {
    HostileDnsServer const server([](std::string answer) {
        bool const hasRecord = answer[7] != 0;
        if (!hasRecord) {
            answer[3] = static_cast<char>(0x82);
        }
        return std::vector<std::string>{answer};
    });
    ask(server.address());
    struct {
        char const* m_reverse;
        char const* m_address;
        int m_isForged;
        LookupResult m_lookup;
    } const rows[] = {
        {"relay.good.test", "192.0.2.99", 1, LookupResult::answered},
        {"relay.bad.test", "192.0.2.99", 0, LookupResult::failed},
        {"relay.bad.test", "192.0.2.7", 0, LookupResult::answered},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.m_reverse);
        auto const props =
            attributes(Message(received("x", row.m_reverse, row.m_address, "mx.test")));
        EXPECT_EQ(props.attributes[Attribute::firstForged], row.m_isForged);
        EXPECT_EQ(ReceivedAccess::fields(props.receivedList.front())->m_forgedLookup, row.m_lookup);
    }
}

TEST_F(LookupTest, AnAnswerThatSaysNoIsNoFailure) {
    auto const before = unanswered();
    judge("gone.here.test", "gone.here.test", "a@gone.here.test");
    EXPECT_EQ(unanswered(), before);
}

TEST_F(LookupTest, ASilentServerCostsItsDeadlineAndIsCounted) {
    SilentDnsServer silent;
    ask(silent.address(), std::chrono::milliseconds(50));
    auto const before = Resolver::instance().counters();
    auto const props = judge("a.here.test", "b.here.test", "a@c.here.test");
    EXPECT_EQ(props.attributes[Attribute::firstForged], 0);
    EXPECT_EQ(props.attributes[Attribute::firstHeloResolves], 0);
    EXPECT_EQ(props.attributes[Attribute::envelopeDomainResolves], 0);
    EXPECT_GT(Resolver::instance().counters().m_late, before.m_late);
}

// The server answers no question before all names were asked for; a scan that waited for an answer
// before it asked for the next name would get none.
TEST_F(LookupTest, TheNamesOfAScanAreAskedForSideBySide) {
    struct {
        char const* m_received;
        char const* m_sender;
        std::set<std::string> m_names;
    } const rows[] = {
        {"relay.late.test (client.late.test [192.0.2.8])",
         "a@late.test",
         {"client.late.test.", "relay.late.test.", "late.test."}},
        {"relay.late.test ([192.0.2.8])", "a@late.test", {"relay.late.test.", "late.test."}},
        {"[192.0.2.8] (client.late.test [192.0.2.8])",
         "a@late.test",
         {"client.late.test.", "late.test."}},
        {"relay.late.test (client.late.test [192.0.2.8])",
         "",
         {"client.late.test.", "relay.late.test."}},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.m_received);
        LateDnsServer const server(std::chrono::milliseconds(0), row.m_names);
        ask(server.address());
        auto const before = unanswered();
        Message message(std::string("Received: from ") + row.m_received + " by mx.test\n");
        message.m_from = address(row.m_sender);
        auto const props = attributes(message);
        EXPECT_EQ(unanswered(), before);
        EXPECT_EQ(server.names(), row.m_names);
        // Every name has the address 192.0.2.7.
        EXPECT_EQ(props.attributes[Attribute::firstForged], row.m_names.count("client.late.test."));
        EXPECT_EQ(props.attributes[Attribute::firstHeloResolves],
                  props.receivers[0].heloIsIP == 2 ? 2 : 1);
        EXPECT_EQ(props.attributes[Attribute::envelopeDomainResolves],
                  row.m_names.count("late.test."));
    }
}

TEST_F(LookupTest, WithoutAPublicHopNothingIsAskedFor) {
    LateDnsServer const server(std::chrono::milliseconds(0));
    ask(server.address());
    Message message(received("relay.late.test", "client.late.test", "10.0.0.7", "mx.test"));
    message.m_from = address("a@late.test");
    auto props = fields(message);
    EXPECT_FALSE(engine().parseFields(props));
    // A question that comes after whatever was asked.
    Resolver::instance().submit(RecordType::A, "last.test", RecordClass::IN);
    EXPECT_EQ(server.names(), std::set<std::string>{"last.test."});
}

TEST_F(LookupTest, OnlyTheFirstPublicHopIsAskedAboutAndKeepsItsAnswer) {
    Message message(received("a", "elsewhere.here.test", "10.0.0.7", "mx.test") +
                    received("b", "elsewhere.here.test", "192.0.2.7", "mx.test") +
                    received("c", "elsewhere.here.test", "192.0.2.7", "mx.test"));
    auto const props = attributes(message);
    std::vector<int> forged;
    for (auto const& hop : props.receivedList) {
        forged.push_back(ReceivedAccess::fields(hop)->m_forged);
    }
    EXPECT_EQ(forged, (std::vector<int>{-1, 1, -1}));
    EXPECT_EQ(props.receivers[0].isForged, 1);
}

// Look-ups belong to the record that began them.
TEST_F(LookupTest, ACopyOfARecordAsksForItself) {
    Message message(received("honest.here.test", "honest.here.test", "192.0.2.7", "mx.test"));
    message.m_from = address("a@mail.here.test");
    auto original = chain(message);
    auto copy = original;
    MsgProperties assigned;
    assigned = original;
    for (auto* props : {&copy, &original, &assigned}) {
        engine().getAttributes(*props);
        EXPECT_EQ(props->attributes[Attribute::firstHeloResolves], 1);
        EXPECT_EQ(props->attributes[Attribute::envelopeDomainResolves], 1);
    }
}

TEST_F(LookupTest, OneNameInBothPlacesIsOneName) {
    LateDnsServer const server(std::chrono::milliseconds(5));
    ask(server.address());
    auto const props = judgeNameless("same.test", "a@same.test");
    EXPECT_EQ(props.attributes[Attribute::firstHeloResolves], 1);
    EXPECT_EQ(props.attributes[Attribute::envelopeDomainResolves], 1);
    EXPECT_EQ(server.names(), std::set<std::string>{"same.test."});
}

TEST_F(LookupTest, AnEmptyNameIsNotAskedForWhileTheOtherIs) {
    LateDnsServer const server(std::chrono::milliseconds(0));
    ask(server.address());
    EXPECT_EQ(judgeNameless("relay.late.test", "").attributes[Attribute::envelopeDomainResolves],
              0);
    EXPECT_EQ(server.names(), std::set<std::string>{"relay.late.test."});
    EXPECT_EQ(judgeNameless("[192.0.2.7]", "a@late.test").attributes[Attribute::firstHeloResolves],
              2);
    EXPECT_EQ(server.names(), (std::set<std::string>{"relay.late.test.", "late.test."}));
}

TEST_F(LookupTest, AnAddressLiteralIsNotLookedUp) {
    SilentDnsServer silent;
    ask(silent.address(), std::chrono::milliseconds(50));
    auto const props = attributes(Message("Received: from [192.0.2.7] ([192.0.2.7]) by c\n"));
    EXPECT_EQ(props.attributes[Attribute::firstHeloResolves], 2);
    EXPECT_EQ(props.attributes[Attribute::firstForged], 0);
    EXPECT_EQ(props.attributes[Attribute::envelopeDomainResolves], 0);
    EXPECT_TRUE(silent.takeQuestions().empty());
}

TEST_F(LookupTest, TheHostsOwnForgedFlagNeedsNoLookUp) {
    LateDnsServer const server(std::chrono::milliseconds(0), {"relay.late.test."});
    ask(server.address());
    Message flagged;
    flagged.m_currentReceived =
        Header("Received", "from relay.late.test (client.late.test [192.0.2.7]) by mx.test");
    flagged.m_currentIsForged = 0;
    EXPECT_EQ(attributes(flagged).attributes[Attribute::firstHeloResolves], 1);
    EXPECT_EQ(server.names(), std::set<std::string>{"relay.late.test."});
}

TEST_F(LookupTest, TheHostsOwnForgedFlagIsTakenAsItIs) {
    Message message;
    message.m_currentReceived =
        Header("Received", "from x (elsewhere.here.test [192.0.2.7]) by mx.test");
    for (int const forged : {0, 1, 5}) {
        message.m_currentIsForged = forged;
        EXPECT_EQ(attributes(message).attributes[Attribute::firstForged], forged);
    }
    message.m_currentIsForged = -1;
    EXPECT_EQ(attributes(message).attributes[Attribute::firstForged], 1)
        << "-1 lets the engine ask";
}

} // namespace
} // namespace Quorvane::Testing
