// SPDX-License-Identifier: Apache-2.0
// Verdicts as a table for a spreadsheet, in which nothing of a message becomes a formula.
#include "qvscan/ScanFixture.h"

#include <algorithm>
#include <gmock/gmock.h>

namespace Quorvane::Testing {

namespace {

using ::testing::HasSubstr;

class VerdictCsv : public ScanTest {
  protected:
    std::string table(std::string const& message) const {
        return scan({"--format", "csv", "--csv", "verdicts"}, message).m_output;
    }

    // The row of one message, without its source and line break.
    std::string row(std::string const& message) const {
        auto const text = table(message);
        auto const start = text.find(',', text.find('\n')) + 1;
        return text.substr(start, text.size() - start - 1);
    }
};

TEST_F(VerdictCsv, HasAColumnForEachFactAndARowForEachMessage) {
    writeNames({{{Kind::node, 3}, {"A dynamic, long name", ""}}});
    auto const text = table(separator + spam() + "\n" + separator + "Subject: x, y\n\n");
    EXPECT_EQ(text, "source,verdict,confidence,node,ruleName,relay,relayName,senderDomain,received,"
                    "date,messageId,from,subject,error\n"
                    "'-:1,spam,0.99,3,\"A dynamic, long name\",192.0.2.7,"
                    "dsl-192-0-2-7.dyn.example.net,example.net,2024-01-01 10:00:00,,"
                    "<1@Host.Example.NET>,Ann <ann@example.net>,,\n"
                    "'-:2,none,,,,,,,,,,,\"x, y\",\n");
}

TEST_F(VerdictCsv, NoCellIsAFormula) {
    for (std::string const start : {"=", "+", "-", "@", "  =", "=?utf-8?q?=3D?="}) {
        auto const shown = start.size() > 3 ? std::string("=") : start.substr(start.size() - 1);
        EXPECT_THAT(row("Subject: x\nSubject: " + start + "1+cmd\n\n"),
                    HasSubstr(",'" + shown + "1+cmd,"))
            << start;
    }
    EXPECT_THAT(row("From: =x@evil.example\nMessage-ID: +1\nDate: @SUM(A1)\n\n"),
                HasSubstr(",'@SUM(A1),'+1,'=x@evil.example,"));
    EXPECT_THAT(row("Subject: a=1\n\n"), HasSubstr(",a=1,"));
    EXPECT_THAT(row("Subject: =a, \"b\"\n\n"), HasSubstr(",\"'=a, \"\"b\"\"\","));
}

TEST_F(VerdictCsv, AMessageTakesOneLineWhateverItsTextHolds) {
    auto const text = table("Subject: =?utf-8?q?a=0Ab=09=1B?=\n\n");
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2);
    EXPECT_THAT(text, HasSubstr(",a\\x0Ab\\x09\\x1B,"));
}

TEST_F(VerdictCsv, TellsWhyAScanFailed) {
    EXPECT_THAT(scan({"--format", "csv", "--csv", "verdicts", "--current-received", "by "}, spam())
                    .m_output,
                HasSubstr(",\"Error deep header scanning "));
}

TEST_F(VerdictCsv, VectorsAreWhatCsvHasWithoutTheOption) {
    auto const vectors = scan({"--format", "csv"}, spam()).m_output;
    EXPECT_EQ(scan({"--format", "csv", "--csv", "vectors"}, spam()).m_output, vectors);
    EXPECT_THAT(vectors, HasSubstr("source,first_helo_is_domain,"));
    auto const refused = scan({"--csv", "verdicts"}, spam());
    EXPECT_EQ(refused.m_status, 64);
    EXPECT_THAT(refused.m_errors, HasSubstr("--csv is for --format csv"));
}

} // namespace

} // namespace Quorvane::Testing
