// SPDX-License-Identifier: Apache-2.0
//
// Look-ups against a real DNS server on loopback.
#include "platform/Host.h"
#include "platform/ResolverFixture.h"
#include "support/DnsServer.h"
#include "support/SilentDnsServer.h"

#include <cstdio>
#include <fstream>
#include <gmock/gmock.h>
#include <optional>
#include <system_error>

namespace Quorvane::Testing {
namespace {

using ::testing::ElementsAre;
using std::string_literals::operator""s;

std::vector<DnsZone> s_zones() {
    return {
        {"example.test", R"(
@        MX    10 mail
mail     A     192.0.2.25
mail     A     192.0.2.26
mail     AAAA  2001:db8::25
only-a   A     192.0.2.1
only-6   AAAA  2001:db8::1
only-mx  MX    0 .
only-txt TXT   "text"
alias    CNAME mail
far      CNAME mail.other.test.
lost     CNAME nowhere
_under   A     192.0.2.2
)",
         false},
        {"other.test", "mail A 192.0.2.77\n", false},
        {"2.0.192.in-addr.arpa",
         "25 PTR mail.example.test.\n26 PTR first.example.test.\n"
         "27 PTR .\n28 PTR a\\.b\\010\\\\c.example.test.\n",
         false},
        {"8.b.d.0.1.0.0.2.ip6.arpa",
         "5.2.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0 PTR six.example.test.\n", false},
        {"10.in-addr.arpa", "1.0.0 PTR inside.example.test.\n", false},
        {"broken.test", "", true},
    };
}

class ResolverTest : public ResolverFixture {
  protected:
    static void SetUpTestSuite() { s_server.emplace(s_zones()); }
    static void TearDownTestSuite() { s_server.reset(); }

    void SetUp() override { configure(serverSettings(s_server->address())); }

    static std::string reverseNameOf(std::string const& address) {
        return Resolver::instance().getHostname(IPAddress(address)).asString();
    }

    static std::optional<DnsServer> s_server;
};

std::optional<DnsServer> ResolverTest::s_server;

TEST_F(ResolverTest, RecordsComeAsWireDataInTheOrderOfTheAnswer) {
    EXPECT_THAT(ask(RecordType::A, "mail.example.test").records(),
                ElementsAre("\xc0\x00\x02\x19"s, "\xc0\x00\x02\x1a"s));
    EXPECT_THAT(ask(RecordType::AAAA, "mail.example.test").records(),
                ElementsAre("\x20\x01\x0d\xb8\0\0\0\0\0\0\0\0\0\0\0\x25"s));
    EXPECT_THAT(ask(RecordType::MX, "example.test").records(),
                ElementsAre("\0\x0a\4mail\7example\4test\0"s));
}

TEST_F(ResolverTest, MailNameExistsWithAnyOneOfItsThreeTypes) {
    EXPECT_TRUE(resolves("only-a.example.test"));
    EXPECT_TRUE(resolves("only-6.example.test"));
    EXPECT_TRUE(resolves("only-mx.example.test"));
    EXPECT_TRUE(resolves("mail.example.test"));
    EXPECT_FALSE(resolves("only-txt.example.test"));
    EXPECT_FALSE(resolves("nowhere.example.test"));
}

TEST_F(ResolverTest, NamesOfTheServersChoiceAreNotAnsweredByTheLibraryItself) {
    // localhost lies outside the server's zones: it refuses.
    EXPECT_FALSE(resolves("localhost"));
    EXPECT_EQ(failed(), 1U);
    EXPECT_EQ(reverseNameOf("10.0.0.1"), "inside.example.test");
}

TEST_F(ResolverTest, NoSuchNameAndNoSuchRecordAreNoFailures) {
    EXPECT_FALSE(resolves("nowhere.example.test"));
    EXPECT_TRUE(ask(RecordType::MX, "only-a.example.test").isEmpty());
    EXPECT_TRUE(ask(RecordType::A, "lost.example.test").isEmpty());
    EXPECT_EQ(failed(), 0U);
    EXPECT_EQ(late(), 0U);
}

TEST_F(ResolverTest, AliasesAreFollowedAcrossZones) {
    EXPECT_THAT(ask(RecordType::A, "alias.example.test").records(),
                ElementsAre("\xc0\x00\x02\x19"s, "\xc0\x00\x02\x1a"s));
    EXPECT_THAT(ask(RecordType::A, "far.example.test").records(), ElementsAre("\xc0\x00\x02\x4d"s));
}

TEST_F(ResolverTest, OneTrailingDotAndLetterCaseDoNotMatter) {
    EXPECT_TRUE(resolves("mail.example.test."));
    EXPECT_TRUE(resolves("MAIL.Example.Test"));
    EXPECT_TRUE(resolves("_under.example.test"));
    EXPECT_FALSE(resolves("mail.example.test.."));
}

TEST_F(ResolverTest, RefusalIsCounted) {
    EXPECT_FALSE(resolves("elsewhere.example"));
    EXPECT_EQ(failed(), 1U);
    EXPECT_EQ(late(), 0U);
}

TEST_F(ResolverTest, ServerFailureIsCounted) {
    EXPECT_TRUE(ask(RecordType::A, "mail.broken.test").isEmpty());
    EXPECT_EQ(failed(), 1U);
    EXPECT_EQ(late(), 0U);
}

TEST_F(ResolverTest, OtherClassesHoldNothing) {
    EXPECT_TRUE(Resolver::instance()
                    .submit(RecordType::A, "mail.example.test", static_cast<RecordClass>(3))
                    .isEmpty());
    EXPECT_EQ(failed(), 0U);
}

TEST_F(ResolverTest, ReverseNamesOfBothFamilies) {
    EXPECT_EQ(reverseNameOf("192.0.2.25"), "mail.example.test");
    EXPECT_EQ(reverseNameOf("::ffff:192.0.2.26"), "first.example.test");
    EXPECT_EQ(reverseNameOf("2001:db8::25"), "six.example.test");
}

TEST_F(ResolverTest, AddressWithoutReverseNameHasANullHostName) {
    Resolver& resolver = Resolver::instance();
    EXPECT_TRUE(resolver.getHostname(IPAddress("192.0.2.99")).isNull());
    EXPECT_TRUE(resolver.getHostname(IPAddress("192.0.2.27")).isNull()) << "PTR to the root";
    EXPECT_TRUE(resolver.getHostname(IPAddress()).isNull());
    EXPECT_EQ(failed(), 0U);
}

TEST_F(ResolverTest, HostileBytesInReverseNamesAreEscaped) {
    EXPECT_EQ(reverseNameOf("192.0.2.28"), "a\\.b\\010\\\\c.example.test");
}

TEST_F(ResolverTest, LookUpsStartedTogetherEachGetTheirOwnAnswer) {
    Resolver& resolver = Resolver::instance();
    PendingLookup first = resolver.start(RecordType::A, "mail.example.test", RecordClass::IN);
    PendingLookup second = resolver.start(RecordType::A, "nowhere.example.test", RecordClass::IN);
    PendingLookup third = resolver.start(RecordType::A, "only-a.example.test", RecordClass::IN);
    EXPECT_EQ(third.wait().records().size(), 1U);
    EXPECT_TRUE(second.wait().isEmpty());
    EXPECT_EQ(first.wait().records().size(), 2U);
}

TEST_F(ResolverTest, LookUpKeepsTheSettingsItBeganWith) {
    PendingLookup pending =
        Resolver::instance().start(RecordType::A, "mail.example.test", RecordClass::IN);
    configure(localSettings({"mail.example.test. A 192.0.2.99"}));
    EXPECT_EQ(pending.wait().records().size(), 2U);
    EXPECT_THAT(ask(RecordType::A, "mail.example.test").records(),
                ElementsAre("\xc0\x00\x02\x63"s));
}

TEST_F(ResolverTest, MovedLookUpIsWaitedForWhereItWent) {
    PendingLookup pending;
    EXPECT_TRUE(pending.wait().isEmpty());
    pending = Resolver::instance().start(RecordType::A, "mail.example.test", RecordClass::IN);
    PendingLookup moved(std::move(pending));
    EXPECT_EQ(moved.wait().records().size(), 2U);
    EXPECT_TRUE(moved.wait().isEmpty()) << "an answer is handed out once";
}

TEST_F(ResolverTest, ZoneDataComesBeforeTheServer) {
    ResolverSettings settings = serverSettings(s_server->address());
    settings.m_zoneData = {"mail.example.test. A 192.0.2.99",
                           "here.example.test. CNAME far.example.test."};
    configure(settings);
    EXPECT_THAT(ask(RecordType::A, "mail.example.test").records(),
                ElementsAre("\xc0\x00\x02\x63"s));
    EXPECT_THAT(ask(RecordType::A, "here.example.test").records(),
                ElementsAre("\xc0\x00\x02\x4d"s));
    EXPECT_TRUE(resolves("only-a.example.test"));
}

using ResolverSilenceTest = ResolverFixture;

TEST_F(ResolverSilenceTest, SilentServerIsCountedLateOncePerLookUp) {
    SilentDnsServer server;
    configure(serverSettings(server.address(), shortDeadline));
    EXPECT_FALSE(resolves("mail.example.test"));
    EXPECT_EQ(late(), 1U);
    EXPECT_TRUE(ask(RecordType::A, "other.example.test").isEmpty());
    EXPECT_EQ(late(), 2U);
    EXPECT_EQ(failed(), 0U);
}

TEST_F(ResolverSilenceTest, DroppedLookUpsAreCancelledAndNotCounted) {
    SilentDnsServer server;
    configure(serverSettings(server.address()));
    for (int i = 0; i < 100; ++i) {
        auto pending = Resolver::instance().start(
            RecordType::mailName, "n" + std::to_string(i) + ".example.test", RecordClass::IN);
    }
    EXPECT_EQ(failed(), 0U);
    EXPECT_EQ(late(), 0U);
}

TEST_F(ResolverSilenceTest, AssigningOverALookUpCancelsIt) {
    SilentDnsServer server;
    configure(serverSettings(server.address()));
    PendingLookup pending =
        Resolver::instance().start(RecordType::A, "a.example.test", RecordClass::IN);
    pending = PendingLookup();
    EXPECT_TRUE(pending.wait().isEmpty());
    EXPECT_EQ(late(), 0U);
}

TEST_F(ResolverSilenceTest, SettingsMayGoWhileALookUpWaitsForASilentServer) {
    SilentDnsServer server;
    configure(serverSettings(server.address(), shortDeadline));
    PendingLookup pending =
        Resolver::instance().start(RecordType::A, "a.example.test", RecordClass::IN);
    ResolverSettings off;
    off.m_mode = ResolverSettings::Mode::off;
    configure(off);
    EXPECT_TRUE(pending.wait().isEmpty());
    EXPECT_EQ(late(), 1U);
}

// The file has no place for a port, so the server must sit on the privileged one.
TEST_F(ResolverSilenceTest, SystemModeAsksTheServersOfItsFile) {
    std::optional<SilentDnsServer> server;
    try {
        server.emplace("127.34.56.78", 53);
    } catch (std::system_error const& error) {
        GTEST_SKIP() << "port 53 is not to be had: " << error.what();
    }
    ResolverSettings settings;
    settings.m_systemFile = testing::TempDir() + "qv-resolv.conf";
    settings.m_deadline = patientDeadline;
    std::ofstream(settings.m_systemFile)
        << "# a comment\nsearch example.test\nnameserver 127.34.56.78\noptions ndots:1\n";
    configure(settings);
    PendingLookup const pending =
        Resolver::instance().start(RecordType::A, "mail", RecordClass::IN);
    EXPECT_THAT(server->takeQuestionsUntil("mail."), ElementsAre("mail."))
        << "names are complete: the search list does not count";
    std::remove(settings.m_systemFile.c_str());
}

struct UnaskedRow {
    char const* m_why;
    std::string m_name;
};

class UnaskedNameTest : public ResolverFixture, public testing::WithParamInterface<UnaskedRow> {};

TEST_P(UnaskedNameTest, DoesNotResolveAndNothingIsAsked) {
    SilentDnsServer server;
    configure(serverSettings(server.address()));
    EXPECT_FALSE(resolves(GetParam().m_name));
    EXPECT_TRUE(Host(GetParam().m_name, true).isNull());
    // What is asked afterwards is the first thing that the server hears of.
    PendingLookup const marker =
        Resolver::instance().start(RecordType::A, "marker.example.test", RecordClass::IN);
    EXPECT_THAT(server.takeQuestionsUntil("marker.example.test."),
                ElementsAre("marker.example.test."));
    EXPECT_EQ(failed() + late(), 0U);
}

std::string s_labels(std::size_t count, std::size_t length) {
    std::string name;
    for (std::size_t i = 0; i < count; ++i) {
        name += std::string(length, 'a') + '.';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Names, UnaskedNameTest,
                         testing::Values(UnaskedRow{"empty", ""}, UnaskedRow{"the root", "."},
                                         UnaskedRow{"IPv4 literal", "192.0.2.1"},
                                         UnaskedRow{"IPv4 literal with a dot", "192.0.2.1."},
                                         UnaskedRow{"HELO literal", "[192.0.2.1]"},
                                         UnaskedRow{"IPv6 literal", "2001:db8::1"},
                                         UnaskedRow{"tagged literal", "[IPv6:2001:db8::1]"},
                                         UnaskedRow{"a space", "mail example.test"},
                                         UnaskedRow{"a trailing space", "mail.example.test "},
                                         UnaskedRow{"a tab", "mail\t.example.test"},
                                         UnaskedRow{"a folded header", "mail.\r\n example.test"},
                                         UnaskedRow{"NUL in front", "\0mail.example.test"s},
                                         UnaskedRow{"NUL after", "mail.example.test\0"s},
                                         UnaskedRow{"two dots in the middle", "mail..example.test"},
                                         UnaskedRow{"a dot in front", ".example.test"},
                                         UnaskedRow{"two dots after", "mail.example.test.."},
                                         UnaskedRow{"a label of 64",
                                                    std::string(64, 'a') + ".example.test"},
                                         UnaskedRow{"254 bytes", s_labels(127, 1) + "."},
                                         UnaskedRow{"a megabyte", s_labels(20000, 50) + "test"}));

TEST_F(ResolverSilenceTest, NamesOfOddBytesAreAskedAsTheyStand) {
    SilentDnsServer server;
    configure(serverSettings(server.address()));
    PendingLookup const pending =
        Resolver::instance().start(RecordType::A, "a+b*.example.test", RecordClass::IN);
    EXPECT_THAT(server.takeQuestionsUntil("a+b*.example.test."), ElementsAre("a+b*.example.test."));
}

TEST_F(ResolverSilenceTest, NamesOfOddBytesAreFoundInZoneData) {
    configure(localSettings({"a+b.example. A 192.0.2.1", "b\\195\\188.example. A 192.0.2.2"}));
    EXPECT_TRUE(resolves("a+b.example"));
    EXPECT_TRUE(resolves("b\xc3\xbc.example"));
    EXPECT_FALSE(resolves("a-b.example"));
}

TEST_F(ResolverSilenceTest, LongestNameAndLabelAreAsked) {
    SilentDnsServer server;
    configure(serverSettings(server.address()));
    std::string const name = s_labels(3, 63) + std::string(61, 'b');
    ASSERT_EQ(name.size(), 253U);
    PendingLookup const pending = Resolver::instance().start(RecordType::A, name, RecordClass::IN);
    EXPECT_THAT(server.takeQuestionsUntil(name + "."), ElementsAre(name + "."));
}

} // namespace
} // namespace Quorvane::Testing
