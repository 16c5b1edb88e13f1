// SPDX-License-Identifier: Apache-2.0
// What qvscan counts of a run.
#include "qvscan/ScanFixture.h"

#include <gmock/gmock.h>

namespace Quorvane::Testing {

namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::StartsWith;

class SummaryTest : public ScanTest {
  protected:
    // Two messages of spam, one of ham, one without a verdict, and three that cannot be judged.
    std::string box() const {
        std::string text;
        auto const add = [&text](std::string const& message) {
            text += separator + message + "\n";
        };
        add(spam());
        add(spam());
        add(ham());
        add(none());
        add("From: ann@example.net\n\nNo Received header\n");
        add("Received: from a.example (a.example [IPv6:2001:db8::1]) by mx.example.org; "
            "Mon, 1 Jan 2024 10:00:00 +0000\nFrom: ann@example.net\n\nIPv6\n");
        add("Received: from a.example (a.example [10.0.0.1]) by mx.example.org; "
            "Mon, 1 Jan 2024 10:00:00 +0000\nFrom: ann@example.net\n\nPrivate\n");
        return m_folder.write("box", text);
    }

    Json summaryOf(Arguments arguments) const {
        arguments.emplace_back("--summary");
        auto const lines = records(scan(arguments));
        return lines.empty() ? Json() : lines.back().value("summary", Json());
    }
};

TEST_F(SummaryTest, ComesAfterTheRecordsInJson) {
    auto const lines = records(scan({"--summary", box(), m_folder.path("none")}));
    ASSERT_EQ(lines.size(), 8U);
    auto summary = lines.back().at("summary");
    EXPECT_GT(summary.at("seconds"), 0.0);
    summary.erase("seconds");
    EXPECT_EQ(summary, Json::parse(R"-({
        "messages": 7,
        "verdicts": {"spam": 2, "ham": 1, "none": 1, "unjudged": 3, "error": 0},
        "notJudged": [{"reason": "no public address", "messages": 1},
                      {"reason": "the message has no Received header", "messages": 1},
                      {"reason": "the newest hop came by IPv6", "messages": 1}],
        "leftOut": 1,
        "rules": [{"node": 3, "messages": 2}, {"node": 4, "messages": 1},
                  {"node": 5, "messages": 1}],
        "spamRelays": [{"relay": "192.0.2.7", "reverseName": "dsl-192-0-2-7.dyn.example.net",
                        "messages": 2}],
        "spamDomains": [{"domain": "example.net", "messages": 2}],
        "byOwnRelay": 0,
        "lookups": {"failed": 0, "late": 0},
        "ruleVersion": 1})-"));
}

TEST_F(SummaryTest, IsTextForPeopleApartFromTheRecords) {
    writeNames({{{Kind::node, 3}, {"A consumer line", ""}}});
    for (std::string const format : {"text", "csv"}) {
        auto const result = scan({"--format", format, "--summary", box()});
        EXPECT_THAT(result.m_output, Not(HasSubstr("messages")));
        EXPECT_THAT(result.m_errors, StartsWith(R"(
7 messages: 2 spam, 1 ham, 1 without a verdict, 3 not judged
Not judged:
          1  no public address
          1  the message has no Received header
          1  the newest hop came by IPv6
Decided by:
          2  node 3 (A consumer line)
          1  node 4
          1  node 5
Spam by relay:
          2  192.0.2.7 (dsl-192-0-2-7.dyn.example.net)
Spam by the domain of the sender:
          2  example.net
Rules of version 1; )"));
        EXPECT_THAT(result.m_errors, MatchesRegex("(.|\n)*; [0-9.]+ s, [0-9,]+ messages/s\n"));
    }
}

TEST_F(SummaryTest, CountsWhatWasJudgedWhateverIsWritten) {
    auto const summary = summaryOf({"--only", "ham", box()});
    EXPECT_EQ(summary.at("messages"), 7);
    EXPECT_EQ(summary.at("verdicts").at("spam"), 2);
}

TEST_F(SummaryTest, IsWrittenToAPipeOnlyWhenAskedFor) {
    auto const result = scan({box()});
    EXPECT_EQ(records(result).size(), 7U);
    EXPECT_EQ(result.m_errors, "");
}

TEST_F(SummaryTest, CountsMessagesByRelaysThatMayBeTheSitesOwn) {
    auto const message = hop("gate", "gate.example.org", "203.0.113.5") + spam();
    auto const path = m_folder.write("mail", message);
    EXPECT_EQ(summaryOf({path}).at("byOwnRelay"), 1);
    EXPECT_EQ(summaryOf({"--internal", "203.0.113.5", path}).at("byOwnRelay"), 0);
    EXPECT_THAT(scan({"--format", "text", "--summary", path}).m_errors,
                HasSubstr("1 message came from a relay with the domain of the receiving host. If "
                          "such relays are the site's own, they should not be judged: qvscan "
                          "--find-relays proposes settings.\n"));
}

TEST_F(SummaryTest, NamesOfSendersAreText) {
    auto const path =
        m_folder.write("mail", hop("a", "dsl-192-0-2-7.dyn.example.net", "192.0.2.7") +
                                   "From: a@b\x1B[31m.example\n\nBody\n");
    EXPECT_THAT(scan({"--format", "text", "--summary", path}).m_errors, Not(HasSubstr("\x1B")));
}

} // namespace

} // namespace Quorvane::Testing
