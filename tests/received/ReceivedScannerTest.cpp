// SPDX-License-Identifier: Apache-2.0
//
// What is read from the text of a Received header, row by row. "\t" and "\r\n" stand where real
// headers are folded.
#include "MsgReceived.h"

#include <gtest/gtest.h>
#include <ostream>
#include <rapidcheck/gtest.h>

namespace Quorvane::Testing {
namespace {

struct ReceivedCase {
    char const* m_origin;
    char const* m_value;
    char const* m_from;
    char const* m_reverseName;
    char const* m_address; // "" where there is none
    char const* m_by;
    char const* m_textAfter; // the value text that the parse leaves
};

std::ostream& operator<<(std::ostream& out, ReceivedCase const& row) {
    return out << row.m_origin;
}

ReceivedCase const receivedCases[] = {
    // The four everyday shapes.
    {"Sendmail, Postfix",
     "from mail.example.com (mail.example.com [192.0.2.1]) by mx.example.net with esmtp id 1; "
     "mon, 1 jan 2024 10:00:00 +0000",
     "mail.example.com", "mail.example.com", "192.0.2.1", "mx.example.net",
     "from mail.example.com (mail.example.com [192.0.2.1])"},
    {"qmail, HELO annotation", "from unknown (helo client.example) (192.0.2.7) by mx.example.net",
     "client.example", "unknown", "192.0.2.7", "mx.example.net",
     "from unknown (helo client.example) (192.0.2.7)"},
    {"Exim, helo=", "from host.example ([192.0.2.9] helo=client.example) by mx.example.net",
     "client.example", "host.example", "192.0.2.9", "mx.example.net",
     "from host.example ([192.0.2.9] helo=client.example)"},
    {"bare address", "from 192.0.2.3 by mx.example.net", "", "", "192.0.2.3", "mx.example.net",
     "from 192.0.2.3"},

    // Letter case and folding.
    {"upper case is lowered",
     "FROM Mail.EXAMPLE.com (Mail.Example.COM [192.0.2.1]) BY MX.Example.NET", "mail.example.com",
     "mail.example.com", "192.0.2.1", "mx.example.net",
     "from mail.example.com (mail.example.com [192.0.2.1])"},
    {"Postfix, folded with a tab",
     "from a.example (b.example [192.0.2.1])\n\tby mx.example.net (Postfix) with ESMTP id 1",
     "a.example", "b.example", "192.0.2.1", "mx.example.net",
     "from a.example (b.example [192.0.2.1])"},
    {"Exchange, folded with a blank",
     "from a.example (192.0.2.1)\r\n by mx.example.net (192.0.2.8) with Microsoft SMTP Server",
     "a.example", "", "192.0.2.1", "mx.example.net", "from a.example (192.0.2.1)"},
    {"name of the receiving host on the next line",
     "from a.example (b.example [192.0.2.1]) by\r\n\tmx.example.net with ESMTP", "a.example",
     "b.example", "192.0.2.1", "mx.example.net", "from a.example (b.example [192.0.2.1]) by"},
    {"nothing after a folded by", "from a.example (b.example [192.0.2.1]) by\r\n \t", "a.example",
     "b.example", "192.0.2.1", "", "from a.example (b.example [192.0.2.1]) by"},
    {"by at the very end is no marker", "from a.example (b.example [192.0.2.1]) by", "a.example",
     "b.example", "192.0.2.1", "", "from a.example (b.example [192.0.2.1]) by"},

    // Which marker counts.
    {"a marker after a tab wins over an earlier one after a blank",
     "from a.example by b.example\tby c.example", "", "a.example", "", "c.example",
     "from a.example by b.example"},
    {"a marker after a line break loses the name's first character",
     "from a.example (b.example [192.0.2.1])\nby mx.example.net", "a.example", "b.example",
     "192.0.2.1", "x.example.net", "from a.example (b.example [192.0.2.1])"},
    {"a marker at the start: local pickup", "by mx.example.net (Postfix, from userid 0)", "", "",
     "", "x.example.net", ""},
    {"a marker inside a word", "from a.example (standby host) x", "a.example", "", "", "ost)",
     "from a.example (stand"},
    {"the receiving host ends at a parenthesis", "from a.example by mx.example.net(Postfix)", "",
     "a.example", "", "mx.example.net", "from a.example"},
    {"the receiving host ends at a bracket", "from a.example by mx.example.net[192.0.2.8]", "",
     "a.example", "", "mx.example.net", "from a.example"},
    {"an empty receiving host", "from a.example by  with esmtp", "", "a.example", "", "",
     "from a.example"},

    // The keyword.
    {"no keyword", "(qmail 1234 invoked by uid 0); 1 jan 2024", "", "", "", "uid",
     "(qmail 1234 invoked"},
    {"keyword alone", "from", "", "", "", "", "from"},
    {"keyword and blanks", "from  \t by mx.example.net", "", "", "", "mx.example.net", "from"},
    {"keyword without blank after it", "froma.example (b.example [192.0.2.1])", "a.example",
     "b.example", "192.0.2.1", "", "froma.example (b.example [192.0.2.1])"},
    {"a tab after the keyword", "from\ta.example (b.example [192.0.2.1])", "a.example", "b.example",
     "192.0.2.1", "", "from\ta.example (b.example [192.0.2.1])"},
    {"empty value", "", "", "", "", "", ""},
    {"only blanks", " \t\r\n ", "", "", "", "", ""},

    // The name in front of the parenthesis.
    {"no blank in front of the parenthesis: the last character is lost",
     "from a.example(b.example [192.0.2.1])", "a.exampl", "b.example", "192.0.2.1", "",
     "from a.example(b.example [192.0.2.1])"},
    {"nothing in front of the parenthesis", "from (b.example [192.0.2.1]) by d", "", "b.example",
     "192.0.2.1", "d", "from (b.example [192.0.2.1])"},
    {"two blanks in front of the parenthesis", "from a.example  (b.example [192.0.2.1])",
     "a.example", "b.example", "192.0.2.1", "", "from a.example  (b.example [192.0.2.1])"},
    {"no parenthesis: the name counts as reverse name", "from a.example by d", "", "a.example", "",
     "d", "from a.example"},
    {"address literal announced", "from [192.0.2.5] (b.example [192.0.2.1]) by d", "[192.0.2.5]",
     "b.example", "192.0.2.1", "d", "from [192.0.2.5] (b.example [192.0.2.1])"},

    // Inside the parentheses.
    {"Postfix, no reverse name", "from a.example (unknown [192.0.2.1]) by d", "a.example",
     "unknown", "192.0.2.1", "d", "from a.example (unknown [192.0.2.1])"},
    {"Postfix, IPv6", "from a.example (b.example [IPv6:2001:db8::1]) by d", "a.example",
     "b.example", "2001:db8::1", "d", "from a.example (b.example [ipv6:2001:db8::1])"},
    {"address only, in brackets", "from a.example ([192.0.2.1]) by d", "a.example", "", "192.0.2.1",
     "d", "from a.example ([192.0.2.1])"},
    {"address only, bare", "from a.example (192.0.2.1) by d", "a.example", "", "192.0.2.1", "d",
     "from a.example (192.0.2.1)"},
    {"no blank in front of the bracket: the last character is lost",
     "from a.example (b.example[192.0.2.1]) by d", "a.example", "b.exampl", "192.0.2.1", "d",
     "from a.example (b.example[192.0.2.1])"},
    {"no address in the parentheses", "from a.example (b.example) by d", "a.example", "", "", "d",
     "from a.example (b.example)"},
    {"address that is none", "from a.example (b.example [192.0.2.999]) by d", "a.example",
     "b.example", "", "d", "from a.example (b.example [192.0.2.999])"},
    {"unclosed bracket", "from a.example (b.example [192.0.2.1 by d", "a.example", "b.example", "",
     "d", "from a.example (b.example [192.0.2.1"},
    {"nothing after the parenthesis", "from a.example (", "a.example", "", "", "",
     "from a.example ("},
    {"EHLO annotation", "from b.example (EHLO a.example) (192.0.2.1) by d", "a.example",
     "b.example", "192.0.2.1", "d", "from b.example (ehlo a.example) (192.0.2.1)"},
    {"vger: address first, then a quoted EHLO",
     "from b.example ([192.0.2.1]:53110 \"EHLO a.example\") by d", "b.example", "", "192.0.2.1",
     "d", "from b.example ([192.0.2.1]:53110 \"ehlo a.example\")"},
    {"qmail, HELO annotation and bracketed address",
     "from b.example (HELO a.example) ([192.0.2.1]) by d", "a.example", "b.example", "192.0.2.1",
     "d", "from b.example (helo a.example) ([192.0.2.1])"},
    {"HELO annotation without a second parenthesis", "from b.example (HELO a.example) by d",
     "a.example", "b.example", "", "d", "from b.example (helo a.example)"},
    {"HELO annotation that is never closed", "from b.example (HELO a.example by d", "b.example", "",
     "", "d", "from b.example (helo a.example"},
    {"HELO annotation that ends the text", "from b.example (helo", "b.example", "", "", "",
     "from b.example (helo"},
    {"HELO annotation with a blank in its name and an address",
     "from b.example (helo a x) ([192.0.2.1]) by d", "b.example", "", "", "",
     "from b.example (helo a x) ([192.0.2.1])"},

    // The helo= form.
    {"Exim, no reverse name", "from [192.0.2.9] (helo=a.example) by d", "a.example", "",
     "192.0.2.9", "d", "from [192.0.2.9] (helo=a.example)"},
    {"Exim, helo= in front of ident", "from b.example ([192.0.2.9] helo=a.example ident=root) by d",
     "a.example", "b.example", "192.0.2.9", "d",
     "from b.example ([192.0.2.9] helo=a.example ident=root)"},
    {"Exim, address with port", "from b.example ([192.0.2.9]:4321 helo=[192.0.2.5]) by d",
     "[192.0.2.5]", "b.example", "192.0.2.9", "d",
     "from b.example ([192.0.2.9]:4321 helo=[192.0.2.5])"},
    {"helo= without address", "from b.example (helo=a.example) by d", "a.example", "b.example", "",
     "d", "from b.example (helo=a.example)"},
    {"helo= that nothing closes", "from b.example ([192.0.2.9] helo=a.example", "", "b.example",
     "192.0.2.9", "", "from b.example ([192.0.2.9] helo=a.example"},
    {"helo= with an unclosed bracket", "from [192.0.2.9 helo=a.example) by d", "a.example", "", "",
     "d", "from [192.0.2.9 helo=a.example)"},
    {"no parenthesis, a bracketed address", "from [192.0.2.9] by d", "", "", "192.0.2.9", "d",
     "from [192.0.2.9]"},
    {"no parenthesis, name and bracketed address", "from b.example [192.0.2.9] by d", "",
     "b.example", "192.0.2.9", "d", "from b.example [192.0.2.9]"},
    {"no parenthesis, a HELO word after the name", "from b.example [192.0.2.9] helo a.example )",
     "a.example", "b.example", "192.0.2.9", "", "from b.example [192.0.2.9] helo a.example )"},
    {"IPv6 literal as the whole name", "from 2001:db8::9 by d", "", "", "2001:db8::9", "d",
     "from 2001:db8::9"},
};

class ReceivedScannerTest : public testing::TestWithParam<ReceivedCase> {};

std::string s_addressText(MsgReceived const& hop) {
    return hop.address().asString(true);
}

TEST_P(ReceivedScannerTest, ReadsTheHop) {
    auto const& row = GetParam();
    MsgReceived const hop{std::string(row.m_value)};
    EXPECT_EQ(hop.from(), row.m_from);
    EXPECT_EQ(hop.reverseName(), row.m_reverseName);
    EXPECT_EQ(s_addressText(hop), row.m_address);
    EXPECT_EQ(hop.by(), row.m_by);
    EXPECT_EQ(hop.value(), row.m_textAfter);
}

INSTANTIATE_TEST_SUITE_P(Shapes, ReceivedScannerTest, testing::ValuesIn(receivedCases));

struct JudgementCase {
    char const* m_origin;
    char const* m_value;
    bool m_isPrivate;
    bool m_isAuthenticated;
};

std::ostream& operator<<(std::ostream& out, JudgementCase const& row) {
    return out << row.m_origin;
}

JudgementCase const judgementCases[] = {
    {"public address", "from a (b [192.0.2.1]) by c", false, false},
    {"private address", "from a (b [10.0.0.1]) by c", true, false},
    {"no address counts as private", "from a by c", true, false},
    {"empty value", "", true, false},
    {"Sendmail, AUTH bits", "from a (b [192.0.2.1]) (authenticated bits=0) by c", false, true},
    {"Postfix", "from a (b [192.0.2.1]) (Authenticated sender: x) by c", false, false},
    {"Courier", "from a (b [192.0.2.1]) (AUTH: x, Authenticated as x) by c", false, true},
    {"bare mark", "from a (b [192.0.2.1]) (Authenticated) by c", false, true},
    {"user mark", "from a (b [192.0.2.1]) (Authenticated user x) by c", false, true},
    {"a mark after the receiving host does not count",
     "from a (b [192.0.2.1]) by c (authenticated)", false, false},
    {"a private client is never authenticated", "from a (b [10.0.0.1]) (authenticated) by c", true,
     false},
    {"no address, never authenticated", "from a (b) (authenticated) by c", true, false},
};

class ReceivedJudgementTest : public testing::TestWithParam<JudgementCase> {};

TEST_P(ReceivedJudgementTest, TellsPrivateAndAuthenticatedHops) {
    MsgReceived const hop{std::string(GetParam().m_value)};
    EXPECT_EQ(hop.privateIP(), GetParam().m_isPrivate);
    EXPECT_EQ(hop.authenticated(), GetParam().m_isAuthenticated);
}

INSTANTIATE_TEST_SUITE_P(Table, ReceivedJudgementTest, testing::ValuesIn(judgementCases));

TEST(ReceiveTimeTest, IsEmptyForAnOrdinaryHeaderBecauseTheDateStandsBehindTheCut) {
    MsgReceived const hop(std::string("from a (b [192.0.2.1]) by c; Mon, 1 Jan 2024 10:00:00"));
    EXPECT_EQ(hop.receiveTime(), "");
}

TEST(ReceiveTimeTest, IsLoweredTextBehindTheLastSemicolonWithoutReceivingHost) {
    MsgReceived const hop(std::string("from a (b [192.0.2.1]) x;y; \r\n\tMon, 1 Jan 2024"));
    EXPECT_EQ(hop.receiveTime(), "mon, 1 jan 2024");
    EXPECT_EQ(hop.by(), "");
}

TEST(ReceiveTimeTest, StandsInFrontOfTheReceivingHost) {
    MsgReceived const hop(std::string("from a (b [192.0.2.1]); Mon by c"));
    EXPECT_EQ(hop.receiveTime(), "mon");
}

TEST(ReceiveTimeTest, IsFilledForAValueWithoutFrom) {
    MsgReceived const hop(std::string("(nullmailer pid 1 invoked); Mon, 1 Jan 2024"));
    EXPECT_EQ(hop.receiveTime(), "mon, 1 jan 2024");
    EXPECT_EQ(hop.from(), "");
    EXPECT_EQ(hop.reverseName(), "");
}

TEST(ReceiveTimeTest, IsEmptyWhenNothingFollowsTheSemicolon) {
    EXPECT_EQ(MsgReceived(std::string("from a (b [192.0.2.1]);")).receiveTime(), "");
}

TEST(ByMarkerTest, AtTheVeryEndRaisesOutOfRangeAtEveryCallAndLeavesTheRecordUnparsed) {
    MsgReceived const hop(std::string("standby "));
    EXPECT_THROW(hop.from(), std::out_of_range);
    EXPECT_THROW(hop.by(), std::out_of_range);
    EXPECT_EQ(hop.value(), "standby ");
}

TEST(ByMarkerTest, WithOneMoreCharacterGivesAnEmptyName) {
    EXPECT_EQ(MsgReceived(std::string("standby x")).by(), "");
}

TEST(HostileTextTest, NulBytesAreOrdinaryBytes) {
    MsgReceived const hop(std::string("from a\0b (c\0d [192.0.2.1]) by e\0f", 33));
    EXPECT_EQ(hop.from(), std::string("a\0b", 3));
    EXPECT_EQ(hop.reverseName(), std::string("c\0d", 3));
    EXPECT_EQ(hop.address().asString(true), "192.0.2.1");
    EXPECT_EQ(hop.by(), std::string("e\0f", 3));
}

TEST(HostileTextTest, AnAddressWithANulIsNone) {
    MsgReceived const hop(std::string("from a (b [192.0.2.1\0]) by c", 28));
    EXPECT_TRUE(hop.address().isNull());
}

// Pieces that the scanner looks for, so that random texts reach every state.
rc::Gen<std::string> s_receivedText() {
    return rc::gen::map(rc::gen::container<std::vector<std::string>>(rc::gen::oneOf(
                            rc::gen::element<std::string>(
                                "from", " by ", "\tby ", "by ", " by", "helo", "ehlo", "helo=", "(",
                                ")", "[", "]", " ", "\t", "\r\n", ";", "192.0.2.1",
                                "ipv6:2001:db8::1", "a.example", "authenticated user"),
                            rc::gen::string<std::string>())),
                        [](std::vector<std::string> const& pieces) {
                            std::string text = "from ";
                            for (auto const& piece : pieces) {
                                text += piece;
                            }
                            return text;
                        });
}

RC_GTEST_PROP(ReceivedPropertyTest, NoTextRaisesAnythingButOutOfRange, ()) {
    MsgReceived const hop(*s_receivedText());
    try {
        RC_ASSERT(hop.from().find(' ') == std::string::npos);
        hop.by();
        RC_ASSERT(hop.privateIP() || !hop.address().isNull());
        RC_ASSERT(!hop.authenticated() || !hop.privateIP());
    } catch (std::out_of_range const&) {
        auto const& text = hop.value();
        RC_ASSERT(text.size() >= 3);
        RC_ASSERT(text.compare(text.size() - 3, 3, "by ") == 0);
    }
}

RC_GTEST_PROP(ReceivedPropertyTest, LaterCallsLeaveTheTextAsTheFirstLeftItOrShorter, ()) {
    MsgReceived const hop(*s_receivedText());
    try {
        hop.from();
        auto const once = hop.value();
        hop.from();
        RC_ASSERT(once.compare(0, hop.value().size(), hop.value()) == 0);
    } catch (std::out_of_range const&) {
        RC_DISCARD("unreadable");
    }
}

} // namespace
} // namespace Quorvane::Testing
