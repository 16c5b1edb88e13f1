// SPDX-License-Identifier: Apache-2.0
//
// Scores of relays: prefixes of the site, and DNS lists that a real name server answers for.
#include "apps/host/RelayScores.h"

#include "platform/HeaderReader.h"
#include "platform/Resolver.h"
#include "support/DnsServer.h"
#include "support/LateDnsServer.h"
#include "support/SilentDnsServer.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

DnsList s_list(std::string const& text) {
    DnsList list;
    readSetting(text, list);
    return list;
}

HeaderContainer s_trail(std::vector<std::string> const& relays) {
    std::string text;
    for (auto const& relay : relays) {
        text += "Received: from a.example (a.example [" + relay + "]) by b.example\n";
    }
    return HeaderReader::read(text);
}

void s_ask(std::string const& server) {
    ResolverSettings settings;
    settings.m_mode = ResolverSettings::Mode::servers;
    settings.m_servers = {server};
    settings.m_deadline = std::chrono::milliseconds(500);
    Resolver::instance().configure(settings);
}

class RelayScoresTest : public testing::Test {
  protected:
    ~RelayScoresTest() override {
        ResolverSettings off;
        off.m_mode = ResolverSettings::Mode::off;
        Resolver::instance().configure(off);
    }

    // What is known of these relays, "address=score ", the client's score first.
    static std::string known(RelayScores const& scores, std::vector<std::string> const& relays,
                             std::string const& client = {}) {
        MessageProperties properties;
        scores.describe(s_trail(relays), IPAddress(client), properties);
        auto text = std::to_string(properties.clientScore());
        for (auto const& entry : properties.receivedHeaderAnalysis()) {
            text += ' ' + entry.m_received.address().asString(true) + '=' +
                    std::to_string(entry.m_score);
        }
        return text;
    }
};

TEST_F(RelayScoresTest, ComeFromTheListsThatNameTheRelay) {
    DnsServer const server({{"good.test",
                             "10.2.0.192 A 127.0.10.3\n"
                             "5.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.8.b.d.0.1.0.0.2 A "
                             "127.0.10.3\n"
                             "20.2.0.192 A 127.0.99.1\n",
                             false}});
    s_ask(server.address());
    RelayScores const scores({}, {s_list("good.test 127.0.10.0/24=8")});
    EXPECT_EQ(known(scores, {"192.0.2.10", "192.0.2.11", "2001:db8::5"}),
              "0 192.0.2.10=8 2001:db8::5=8");
    EXPECT_EQ(known(scores, {"192.0.2.20"}), "0") << "an answer without a score says nothing";
    EXPECT_EQ(known(scores, {}, "192.0.2.10"), "8 192.0.2.10=8");
}

TEST_F(RelayScoresTest, AreTheLowestOfSeveralLists) {
    DnsServer const server({{"good.test", "10.2.0.192 A 127.0.0.3\n", false},
                            {"bad.test", "10.2.0.192 A 127.0.0.2\n", false}});
    s_ask(server.address());
    RelayScores const scores({}, {s_list("good.test 127.0.0.3=8"), s_list("bad.test 127.0.0.2=1")});
    EXPECT_EQ(known(scores, {"192.0.2.10"}), "0 192.0.2.10=1");
}

TEST_F(RelayScoresTest, OfTheSiteComeBeforeThoseOfLists) {
    DnsServer const server({{"good.test", "10.2.0.192 A 127.0.0.3\n", false}});
    s_ask(server.address());
    RelayScores const scores({{IPPrefix::parse("192.0.2.0/24"), 3}},
                             {s_list("good.test 127.0.0.3=8")});
    EXPECT_EQ(known(scores, {"192.0.2.10"}, "192.0.2.10"), "3");
}

TEST_F(RelayScoresTest, DoNotKnowPrivateAddresses) {
    DnsServer const server({{"good.test", "1.0.0.10 A 127.0.0.3\n", false}});
    s_ask(server.address());
    RelayScores const scores({}, {s_list("good.test 127.0.0.3=8")});
    EXPECT_EQ(known(scores, {"10.0.0.1"}), "0");
}

TEST_F(RelayScoresTest, SayNothingForAListThatDoesNotAnswer) {
    SilentDnsServer const server;
    s_ask(server.address());
    RelayScores const scores({}, {s_list("good.test 127.0.0.3=8")});
    EXPECT_EQ(known(scores, {"192.0.2.10"}), "0");
}

// The server answers nothing before it has been asked about the last relay.
TEST_F(RelayScoresTest, AskAboutAllRelaysAtOnce) {
    LateDnsServer const server(std::chrono::milliseconds(1),
                               {"1.2.0.192.good.test.", "2.2.0.192.good.test.",
                                "3.2.0.192.good.test.", "1.2.0.192.bad.test."});
    s_ask(server.address());
    RelayScores const scores({}, {s_list("good.test 127.0.0.3=8"), s_list("bad.test 127.0.0.2=1")});
    auto const before = Resolver::instance().counters();
    known(scores, {"192.0.2.1", "192.0.2.2", "192.0.2.3"});
    auto const after = Resolver::instance().counters();
    EXPECT_EQ(after.m_late, before.m_late);
    EXPECT_EQ(server.names().size(), 6U);
}

TEST_F(RelayScoresTest, AskAboutTheNewestRelaysOnly) {
    LateDnsServer const server(std::chrono::milliseconds(1));
    s_ask(server.address());
    RelayScores const scores({}, {s_list("good.test 127.0.0.3=8")});
    std::vector<std::string> relays;
    for (int i = 1; i <= 99; ++i) {
        relays.push_back("192.0.2." + std::to_string(i));
    }
    known(scores, relays);
    auto const names = server.names();
    EXPECT_EQ(names.size(), maxListedRelays);
    EXPECT_TRUE(names.contains("50.2.0.192.good.test."));
}

TEST(DnsListTest, ReadsBackAsItIsShown) {
    for (auto const* const text :
         {"list.example 127.0.0.2/32=0", "list.example 127.0.0.2/32=0 127.0.10.0/24=8"}) {
        EXPECT_EQ(settingTexts(s_list(text)), SettingTexts{text});
    }
}

TEST(DnsListTest, SaysWhatIsWrong) {
    std::pair<char const*, char const*> const cases[] = {
        {"list.example", "is not a DNS list"},
        {"", "is not a DNS list"},
        {"127.0.0.2=0", "is not a DNS list"},
        {"list.example 127.0.0.2", "is not a score"},
        {"list.example 127.0.0.2=10", "a score is a whole number from 0 to 9"},
        {"list.example 192.0.2.1=1", "lists answer with addresses in 127.0.0.0/8"},
    };
    for (auto const& [text, problem] : cases) {
        try {
            s_list(text);
            ADD_FAILURE() << text;
        } catch (SettingsError const& error) {
            EXPECT_NE(std::string(error.what()).find(problem), std::string::npos) << error.what();
        }
    }
}

} // namespace
} // namespace Quorvane::Testing
