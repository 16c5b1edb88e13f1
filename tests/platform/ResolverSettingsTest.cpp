// SPDX-License-Identifier: Apache-2.0
//
// What settings mean, and what is said about wrong ones.
#include "include2/Exception.h"
#include "platform/Host.h"
#include "platform/ResolverFixture.h"
#include "support/SilentDnsServer.h"

#include <gmock/gmock.h>

namespace Quorvane::Testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using std::string_literals::operator""s;

using LocalZoneDataTest = ResolverFixture;

TEST_F(LocalZoneDataTest, AnswersItsRecordsAndNoSuchNameForAllElse) {
    configure(localSettings({"mail.example.test. A 192.0.2.25", "", "; a comment", "# another",
                             "Example.Test 300 IN MX 10 mail.example.test.",
                             "six.example.test. IN 300 AAAA 2001:db8::6 ; trailing comment",
                             "25.2.0.192.in-addr.arpa. PTR mail.example.test."}));
    EXPECT_THAT(ask(RecordType::A, "MAIL.example.test.").records(),
                ElementsAre("\xc0\x00\x02\x19"s));
    EXPECT_TRUE(resolves("example.test"));
    EXPECT_TRUE(resolves("six.example.test"));
    EXPECT_EQ(Resolver::instance().getHostname(IPAddress("192.0.2.25")).asString(),
              "mail.example.test");
    EXPECT_FALSE(resolves("other.example.test"));
    EXPECT_FALSE(resolves("test"));
    EXPECT_FALSE(resolves("localhost"));
    EXPECT_FALSE(resolves("example.org"));
    EXPECT_EQ(failed() + late(), 0U);
}

TEST_F(LocalZoneDataTest, MayBeEmpty) {
    configure(localSettings({}));
    EXPECT_FALSE(resolves("mail.example.test"));
    EXPECT_EQ(failed() + late(), 0U);
}

TEST_F(LocalZoneDataTest, AliasesAreFollowed) {
    configure(localSettings({"a.test. CNAME b.test.", "b.test. CNAME c.test.",
                             "c.test. A 192.0.2.3", "gone.test. CNAME nowhere.test.",
                             "mx.test. CNAME target.test.", "target.test. MX 5 c.test."}));
    EXPECT_THAT(ask(RecordType::A, "a.test").records(), ElementsAre("\xc0\x00\x02\x03"s));
    EXPECT_TRUE(resolves("a.test"));
    EXPECT_TRUE(resolves("mx.test"));
    EXPECT_FALSE(resolves("gone.test"));
    EXPECT_EQ(failed() + late(), 0U);
}

TEST_F(LocalZoneDataTest, AliasesInACircleFail) {
    configure(localSettings({"a.test. CNAME b.test.", "b.test. CNAME a.test."}));
    EXPECT_TRUE(ask(RecordType::A, "a.test").isEmpty());
    EXPECT_EQ(failed(), 1U);
}

TEST_F(LocalZoneDataTest, NothingElseIsAsked) {
    SilentDnsServer server;
    ResolverSettings settings = localSettings({"mail.example.test. A 192.0.2.25"});
    settings.m_servers = {server.address()};
    configure(settings);
    EXPECT_FALSE(resolves("other.example.test"));
    EXPECT_TRUE(server.takeQuestions().empty());
}

using ResolverOffTest = ResolverFixture;

TEST_F(ResolverOffTest, NothingResolvesAndNothingFails) {
    ResolverSettings settings = localSettings({"mail.example.test. A 192.0.2.25"});
    settings.m_mode = ResolverSettings::Mode::off;
    configure(settings);
    EXPECT_FALSE(resolves("mail.example.test"));
    EXPECT_EQ(failed() + late(), 0U);
}

// What an Exception of category 3 says; fails when there is none.
std::string s_complaint(ResolverSettings const& settings) {
    try {
        Resolver::instance().configure(settings);
    } catch (Exception const& exception) {
        EXPECT_EQ(exception.intParameter(), 3);
        return exception.stringParameter();
    }
    ADD_FAILURE() << "the settings were taken";
    return {};
}

class WrongServerTest : public ResolverFixture, public testing::WithParamInterface<std::string> {};

TEST_P(WrongServerTest, IsNamed) {
    EXPECT_THAT(s_complaint(serverSettings(GetParam())),
                HasSubstr("DNS server \"" + GetParam() + "\""));
}

INSTANTIATE_TEST_SUITE_P(Servers, WrongServerTest,
                         testing::Values("", "dns.example.test", "192.0.2", "192.0.2.1:53",
                                         "[2001:db8::1]", "192.0.2.1@", "192.0.2.1@0",
                                         "192.0.2.1@65536", "192.0.2.1@5x", "192.0.2.1@-1",
                                         "192.0.2.1@53@53", "192.0.2.1 ", "@53"));

struct ZoneLineRow {
    std::string m_line;
    std::string m_problem;
};

class WrongZoneLineTest : public ResolverFixture,
                          public testing::WithParamInterface<ZoneLineRow> {};

TEST_P(WrongZoneLineTest, IsNamedWithItsNumber) {
    ZoneLineRow const& row = GetParam();
    std::string const complaint =
        s_complaint(localSettings({"good.test. A 192.0.2.1", "", row.m_line}));
    EXPECT_THAT(complaint, HasSubstr("zone data line 3 \"" + row.m_line + "\""));
    EXPECT_THAT(complaint, HasSubstr(row.m_problem));
}

INSTANTIATE_TEST_SUITE_P(
    Lines, WrongZoneLineTest,
    testing::Values(ZoneLineRow{"name.test.", "type is missing"},
                    ZoneLineRow{"name.test. 300 IN", "type is missing"},
                    ZoneLineRow{"name.test. A", "A takes 1"},
                    ZoneLineRow{"name.test. A 192.0.2.1 192.0.2.2", "A takes 1"},
                    ZoneLineRow{"name.test. a 192.0.2.1 junk", "A takes 1"},
                    ZoneLineRow{"name.test. A 192.0.2", "no resource record"},
                    ZoneLineRow{"name.test. AAAA 192.0.2.1", "no resource record"},
                    ZoneLineRow{"name.test. MX mail.test.", "MX takes 2"},
                    ZoneLineRow{"name.test. MX ten mail.test.", "no resource record"},
                    ZoneLineRow{"name.test. NONSENSE 1", "no resource record"},
                    ZoneLineRow{"name.test. CH A 192.0.2.1", "only class IN"},
                    ZoneLineRow{"name..test. A 192.0.2.1", "no resource record"},
                    ZoneLineRow{std::string(64, 'a') + ".test. A 192.0.2.1", "no resource record"},
                    ZoneLineRow{"$TTL 300", "directives"}, ZoneLineRow{"@ A 192.0.2.1", "name"},
                    ZoneLineRow{"  A 192.0.2.1", "name is missing"},
                    ZoneLineRow{"*.test. A 192.0.2.1", "wildcards"},
                    ZoneLineRow{"name.test. A 192.0.2.1\0"s, "control character"},
                    ZoneLineRow{"name.test. A 192.0.2.1\nb.test. A 192.0.2.1",
                                "control character"}));

using ResolverConfigureTest = ResolverFixture;

TEST_F(ResolverConfigureTest, WrongSettingsLeaveTheOnesInForce) {
    configure(localSettings({"mail.example.test. A 192.0.2.25"}));
    s_complaint(localSettings({"nonsense"}));
    s_complaint(serverSettings("nonsense"));
    EXPECT_TRUE(resolves("mail.example.test"));
}

TEST_F(ResolverConfigureTest, ServerModeWithoutServersIsRefused) {
    ResolverSettings settings = serverSettings("192.0.2.1");
    settings.m_servers.clear();
    EXPECT_THAT(s_complaint(settings), HasSubstr("no server given"));
}

TEST_F(ResolverConfigureTest, UnreadableSystemFileIsNamed) {
    ResolverSettings settings;
    settings.m_systemFile = "/nonexistent/resolv.conf";
    EXPECT_THAT(s_complaint(settings), HasSubstr("\"/nonexistent/resolv.conf\""));
}

TEST_F(ResolverConfigureTest, DeadlineOutOfRangeIsRefused) {
    for (auto const deadline : {std::chrono::milliseconds::min(), std::chrono::milliseconds{-1},
                                std::chrono::milliseconds{0}, std::chrono::milliseconds{600001},
                                std::chrono::milliseconds::max()}) {
        EXPECT_THAT(s_complaint(serverSettings("192.0.2.1", deadline)), HasSubstr("deadline"));
    }
}

} // namespace
} // namespace Quorvane::Testing
