// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/NoReverseName.h"

#include <gtest/gtest.h>
#include <vector>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

struct ShapeCase {
    char const* m_origin;
    char const* m_value;
    char const* m_rewritten; // up to the by-part
};

// What stands after the client in every row: it must survive byte for byte.
constexpr char tail[] = " by mx.example.net\n\twith ESMTP id 1;\n\tMon, 1 Jan 2024 10:00:00 +0000";

constexpr ShapeCase shapeCases[] = {
    {"Postfix", "from pc.example (host.example [192.0.2.1])", "from pc.example (192.0.2.1)"},
    {"Postfix, no reverse name", "from pc (unknown [192.0.2.1])", "from pc (192.0.2.1)"},
    {"Postfix, IPv6", "from pc.example (host.example [IPv6:2001:db8::1])",
     "from pc.example (2001:db8::1)"},
    {"Postfix, folded", "from pc.example\n\t(host.example [192.0.2.1])",
     "from pc.example (192.0.2.1)"},
    {"Postfix, TLS comment",
     "from pc (host.example [192.0.2.1])\n\t(using TLSv1.3 with cipher X (256/256 bits))",
     "from pc (192.0.2.1)\n\t(using TLSv1.3 with cipher X (256/256 bits))"},
    {"Postfix, address literal", "from [10.0.0.5] (host.example [192.0.2.1])",
     "from [10.0.0.5] (192.0.2.1)"},
    {"Sendmail, forged", "from pc (host.example [192.0.2.1] (may be forged))",
     "from pc (192.0.2.1)"},
    {"Sendmail, no reverse name", "from pc.example ([192.0.2.1])", "from pc.example (192.0.2.1)"},
    {"Sendmail, ident", "from pc (root@host.example [192.0.2.1])", "from pc (192.0.2.1)"},
    {"Sendmail, IDENT upper case", "from pc (IDENT:joe@host.example [192.0.2.1])",
     "from pc (192.0.2.1)"},
    {"Exim, equal names", "from host.example ([192.0.2.1])", "from host.example (192.0.2.1)"},
    {"Exim, helo=", "from host.example ([192.0.2.1] helo=pc)", "from pc (192.0.2.1)"},
    {"Exim, port and helo=", "from host.example ([192.0.2.1]:4711 helo=pc)", "from pc (192.0.2.1)"},
    {"Exim, ident and helo=", "from host.example ([192.0.2.1] ident=joe helo=pc)",
     "from pc (192.0.2.1)"},
    {"Exim, no reverse name", "from [192.0.2.1] (helo=pc.example)", "from pc.example (192.0.2.1)"},
    {"Exim, no reverse name, port", "from [192.0.2.1] (port=4711 helo=pc.example)",
     "from pc.example (192.0.2.1)"},
    {"Exim, IPv6, helo=", "from host.example ([2001:db8::1] helo=pc)", "from pc (2001:db8::1)"},
    {"Exim, literal in helo=", "from host.example ([192.0.2.1] helo=[10.0.0.5])",
     "from [10.0.0.5] (192.0.2.1)"},
    {"qmail, no reverse name", "from unknown (HELO pc.example) (192.0.2.1)",
     "from pc.example (192.0.2.1)"},
    {"qmail", "from host.example (HELO pc) (192.0.2.1)", "from pc (192.0.2.1)"},
    {"qmail, EHLO and ident", "from host.example (EHLO pc) (joe@192.0.2.1)", "from pc (192.0.2.1)"},
    {"CommuniGate", "from [192.0.2.1] (HELO pc.example)", "from pc.example (192.0.2.1)"},
    {"CommuniGate, account", "from [192.0.2.1] (account joe@example.org HELO pc)",
     "from pc (192.0.2.1)"},
    {"ZMailer", "from host.example ([192.0.2.1]:4711 \"EHLO pc\" rhost-flags-OK-OK-OK-OK)",
     "from pc (192.0.2.1)"},
    {"bare brackets", "from pc.example [192.0.2.1]", "from pc.example (192.0.2.1)"},
    {"Exchange", "from pc.example (192.0.2.1)", "from pc.example (192.0.2.1)"},
    {"Exchange, IPv6", "from pc.example (2001:db8::1)", "from pc.example (2001:db8::1)"},
};

// The value of the only Received header of a message, rewritten.
std::optional<std::string> s_rewritten(std::string const& value) {
    std::string const name = "Received: ";
    auto const isOwnRelay = [](std::string const&) { return false; };
    auto const section = withoutReverseNames(name + value + "\n\n", isOwnRelay);
    return section ? std::optional(section->substr(name.size(), section->size() - name.size() - 2))
                   : std::nullopt;
}

TEST(NoReverseName, RewritesTheClientAndKeepsTheRest) {
    for (auto const& one : shapeCases) {
        EXPECT_EQ(s_rewritten(std::string(one.m_value) + tail), std::string(one.m_rewritten) + tail)
            << one.m_origin;
    }
}

TEST(NoReverseName, ChangesNothingTheSecondTime) {
    for (auto const& one : shapeCases) {
        auto const once = s_rewritten(std::string(one.m_value) + tail);
        ASSERT_TRUE(once) << one.m_origin;
        EXPECT_EQ(s_rewritten(*once), once) << one.m_origin;
    }
}

TEST(NoReverseName, LeavesTextWithoutAKnownClientAlone) {
    for (char const* const value : {
             "by mx.example.net with local id 1",
             "(qmail 4711 invoked by uid 0); 1 Jan 2024 10:00:00 -0000",
             "from localhost by mx.example.net",
             "from two words (host.example [192.0.2.1]) by mx.example.net",
             "from pc (host.example [192.0.2.1",
             "from pc (host.example [not an address]) by mx.example.net",
             "from pc (helo=) by mx.example.net",
             "from",
             "",
         }) {
        EXPECT_FALSE(s_rewritten(value)) << value;
    }
}

TEST(NoReverseName, CopesWithNulAndHighBytes) {
    std::string const value("from p\0c\xff (host.example [192.0.2.1]) by mx\0", 43);
    auto const rewritten = s_rewritten(value);
    ASSERT_TRUE(rewritten);
    EXPECT_EQ(rewritten->substr(0, 21), std::string("from p\0c\xff (192.0.2.1)", 21));
}

bool s_isOwn(std::string const& address) {
    return address.rfind("10.", 0) == 0 || address.rfind("198.51.100.", 0) == 0;
}

TEST(NoReverseNames, RewriteTheHopThatReachedTheBorderAndNothingOlder) {
    EXPECT_EQ(withoutReverseNames("Return-Path: <a@b.example>\n"
                                  "Received: from pc (host.example [192.0.2.1])\n\tby mx.a\n"
                                  "Subject: from x (y [192.0.2.9])\n"
                                  "Received: from old (older.example [192.0.2.2]) by b\n\nbody\n",
                                  s_isOwn),
              "Return-Path: <a@b.example>\n"
              "Received: from pc (192.0.2.1)\n\tby mx.a\n"
              "Subject: from x (y [192.0.2.9])\n"
              "Received: from old (older.example [192.0.2.2]) by b\n\nbody\n");
}

TEST(NoReverseNames, RewriteTheSitesOwnHopsOnTheWayToTheBorder) {
    EXPECT_EQ(withoutReverseNames("Received: by inner with local\n"
                                  "RECEIVED : from in (in.example [10.0.0.1]) by a\n"
                                  "Received:from relay (r.example [198.51.100.3]) by b\r\n"
                                  "Received: from pc (host.example [192.0.2.1]) by c\n",
                                  s_isOwn),
              "Received: by inner with local\n"
              "RECEIVED : from in (10.0.0.1) by a\n"
              "Received:from relay (198.51.100.3) by b\r\n"
              "Received: from pc (192.0.2.1) by c\n");
}

TEST(NoReverseNames, GiveNoCopyWhenTheBordersHeaderIsNotUnderstood) {
    for (char const* const section : {
             "",
             "Subject: x\n",
             "Received: from in (in.example [10.0.0.1]) by a\n",
             "Received: from odd ((nested) [192.0.2.1]) by a\n"
             "Received: from pc (host.example [192.0.2.2]) by c\n",
             "\nReceived: from pc (host.example [192.0.2.1]) by c\n",
         }) {
        EXPECT_FALSE(withoutReverseNames(section, s_isOwn)) << section;
    }
}

} // namespace
} // namespace Quorvane::Testing
