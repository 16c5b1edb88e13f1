// SPDX-License-Identifier: Apache-2.0
// The settings that qvscan proposes for a site's own relays.
#include "qvscan/ScanFixture.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace Quorvane::Testing {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class RelayFinderTest : public ScanTest {
  protected:
    // `trail` above messages of spam.
    std::string box(std::string const& trail, int messages) const {
        std::string text;
        for (int i = 0; i < messages; ++i) {
            text += separator + trail + spam() + "\n";
        }
        return m_folder.write("box", text);
    }

    ProgramResult find(std::string const& path) const { return scan({"--find-relays", path}); }
};

std::string const border = hop("gate", "gate.example.org", "203.0.113.5");

TEST_F(RelayFinderTest, ProposesRelaysWithTheDomainOfTheReceivingHost) {
    auto const result = find(box(border, 3));
    EXPECT_EQ(result.m_status, 0);
    EXPECT_EQ(
        result.m_output,
        R"(# 3 messages were judged. These relays have the domain of the host that received from
# them. Check that they are the site's own, then put the lines into the settings file.
internal = [
    "203.0.113.5", # gate.example.org, to mx.example.org: 3 messages
]
# What changes:  spam        ham       none   unjudged
# before          0          3          0          0
# after           3          0          0          0
)");
}

TEST_F(RelayFinderTest, WhatItProposesAreSettings) {
    auto const path = box(border, 3);
    auto const config = m_folder.write("qv.toml", find(path).m_output);
    EXPECT_EQ(scan({path}).m_status, 0);
    EXPECT_EQ(scan({"--config", config, path}).m_status, 1);
}

TEST_F(RelayFinderTest, FindsAChainOfRelays) {
    auto const inner = hop("inner", "inner.example.org", "203.0.113.6", "mx.example.org");
    auto const outer = hop("outer", "outer.example.org", "2001:db8::7", "inner.example.org");
    auto const output = find(box(inner + outer, 2)).m_output;
    EXPECT_THAT(output, HasSubstr("\"203.0.113.6\", # inner.example.org, to mx.example.org: 2 "));
    EXPECT_THAT(output,
                HasSubstr("\"2001:db8::7\", # outer.example.org, to inner.example.org: 2 "));
    EXPECT_THAT(output, HasSubstr("# after           2          0          0          0\n"));
}

TEST_F(RelayFinderTest, KeepsWhatTheSettingsSayAlready) {
    auto const inner = hop("inner", "inner.example.org", "203.0.113.6", "mx.example.org");
    auto const outer = hop("outer", "outer.example.org", "203.0.113.7", "inner.example.org");
    auto const result = scan({"--find-relays", "--internal", "203.0.113.6", box(inner + outer, 2)});
    EXPECT_THAT(result.m_output, HasSubstr("    \"203.0.113.6/32\", # set already\n"
                                           "    \"203.0.113.7\", # outer.example.org, to "
                                           "inner.example.org: 2 messages\n]\n"));
}

TEST_F(RelayFinderTest, LeavesOutWhatIsNoRelayOfTheSite) {
    struct {
        char const* m_reverse;
        char const* m_by;
    } const rows[] = {
        {"mail.other.example", "mx.example.org"},
        // A provider's customer sends to the provider.
        {"dsl-203-0-113-5.dyn.example.org", "mx.example.org"},
        // Nobody registered what the names share.
        {"mail.other.co.uk", "mx.example.co.uk"},
        {"unknown", "mx.example.org"},
        {"203.0.113.5", "192.0.113.5"},
    };
    for (auto const& row : rows) {
        auto const result = find(box(hop("a", row.m_reverse, "203.0.113.5", row.m_by), 3));
        EXPECT_EQ(result.m_output, "# 3 messages were judged. No relay has the domain of the host "
                                   "that received from it.\n")
            << row.m_reverse;
    }
    EXPECT_THAT(find(box(border, 1)).m_output, Not(HasSubstr("internal"))) << "one is no evidence";
}

TEST_F(RelayFinderTest, NamesRelaysThatCarryMuchOfTheMail) {
    auto const host = hop("out", "out.host.example", "203.0.113.9");
    EXPECT_THAT(
        find(box(host, 20)).m_output,
        HasSubstr("# A great part of the mail came through these. If they are the site's "
                  "own, list them, too:\n"
                  "# \"203.0.113.9\", # out.host.example, to mx.example.org: 20 messages\n"));
    EXPECT_THAT(find(box(host, 19)).m_output, Not(HasSubstr("203.0.113.9")));
}

TEST_F(RelayFinderTest, ReadsItsInputSeveralTimes) {
    auto const pipe = m_folder.path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (auto const& paths : {Arguments{}, {"-"}, {pipe}}) {
        Arguments arguments{"--find-relays"};
        arguments.insert(arguments.end(), paths.begin(), paths.end());
        EXPECT_EQ(scan(arguments).m_status, 64);
    }
}

TEST_F(RelayFinderTest, LooksAtMailOfAPeriod) {
    auto const of = [](std::string const& date) {
        return "From a\nReceived: from gate.example.org (gate.example.org [203.0.113.5])\n by "
               "mx.example.org; " +
               date + "\nFrom: a@example.com\n\n\n";
    };
    auto const file = m_folder.write("box", of("Mon, 6 May 2024 10:00:00 +0000") +
                                                of("Mon, 13 May 2024 10:00:00 +0000"));
    EXPECT_THAT(scan({"--find-relays", file}).m_output, HasSubstr("# 2 messages were judged."));
    EXPECT_THAT(scan({"--find-relays", "--since", "2024-05-10", file}).m_output,
                HasSubstr("# 1 messages were judged."));
}

TEST_F(RelayFinderTest, RefusesOptionsThatChooseResults) {
    for (auto const& options :
         {Arguments{"--only", "spam"}, {"--rule", "3"}, {"--extract", "x"}, {"--explain"}}) {
        Arguments arguments{"--find-relays", m_folder.path("box")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        auto const result = scan(arguments);
        EXPECT_EQ(result.m_status, 64);
        EXPECT_THAT(result.m_errors, HasSubstr("leave out " + options.front())) << result.m_errors;
    }
}

TEST_F(RelayFinderTest, ReportsAProblemOnce) {
    auto const result = scan({"--find-relays", box(border, 2), m_folder.path("none")});
    EXPECT_EQ(result.m_status, 66);
    EXPECT_EQ(result.m_errors, "qvscan: " + m_folder.path("none") +
                                   ": cannot be opened: No such file or directory\n");
    EXPECT_THAT(result.m_output, HasSubstr("203.0.113.5"));
}

} // namespace

} // namespace Quorvane::Testing
