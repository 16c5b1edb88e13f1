// SPDX-License-Identifier: Apache-2.0
//
// The look-ups of a message: what the record says of them, and how long all of them may take.
#include "apps/host/ScanHost.h"

#include "apps/host/RuleLoader.h"
#include "platform/HeaderReader.h"
#include "platform/ResolverFixture.h"
#include "support/DnsServer.h"
#include "support/SilentDnsServer.h"

#include <gmock/gmock.h>

namespace Quorvane::Testing {
namespace {

using std::chrono::steady_clock;
using ::testing::ElementsAre;

class ScanHostTest : public ResolverFixture {
  protected:
    static HostSettings settings(double timeout) {
        HostSettings settings;
        settings.m_dnsTimeout = timeout;
        DnsList list;
        readSetting("list.test 127.0.0.3=3", list);
        settings.m_dnsLists = {list};
        return settings;
    }

    // The look-ups for a message of 192.0.2.55, which announced mail.example.org: "name result ".
    static std::vector<std::string> lookups(HostSettings const& settings) {
        static char const* const words[] = {"notAsked", "answered", "doesNotExist", "failed",
                                            "late"};
        ScanHost const host(settings, loadedRules(Rules::RuleSet{}));
        MessageFacts facts;
        facts.m_client = IPAddress("192.0.2.55");
        facts.m_currentReceived = "from mail.example.org (unknown [192.0.2.55]) by mx.example.net";
        auto const record = host.scan(HeaderReader::read(""), facts, RecordDepth::steps);
        std::vector<std::string> texts;
        for (auto const& lookup : record.lookups) {
            texts.push_back(lookup.name + ' ' + words[static_cast<std::size_t>(lookup.result)]);
        }
        return texts;
    }
};

TEST_F(ScanHostTest, RecordsWhatListsWereAskedBeforeTheNamesOfTheScan) {
    DnsServer const server({{"list.test", "55.2.0.192 A 127.0.0.3\n", false},
                            {"example.org", "mail A 192.0.2.55\n", false}});
    configure(serverSettings(server.address()));
    EXPECT_THAT(lookups(settings(30)),
                ElementsAre("55.2.0.192.list.test answered", "mail.example.org answered"));
}

TEST_F(ScanHostTest, GivesAllLookupsOfAMessageOneEnd) {
    SilentDnsServer const server;
    configure(serverSettings(server.address(), patientDeadline));
    auto const start = steady_clock::now();
    EXPECT_THAT(lookups(settings(0.1)),
                ElementsAre("55.2.0.192.list.test late", "mail.example.org late"));
    EXPECT_LT(steady_clock::now() - start, patientDeadline) << "that is the resolver's own end";
}

TEST_F(ScanHostTest, LeavesTimeForTheNamesWhenAListIsSilent) {
    SilentDnsServer const server;
    auto resolver = serverSettings(server.address());
    resolver.m_zoneData = {"mail.example.org. A 192.0.2.55"};
    configure(resolver);
    EXPECT_THAT(lookups(settings(2)),
                ElementsAre("55.2.0.192.list.test late", "mail.example.org answered"));
}

} // namespace
} // namespace Quorvane::Testing
