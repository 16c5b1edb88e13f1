// SPDX-License-Identifier: Apache-2.0
#include "apps/headers/ReceivedDate.h"
#include "apps/headers/MessageIdentity.h"
#include "platform/HeaderReader.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

namespace {

TEST(ReceivedDate, IsWhatStandsAfterTheLastSemicolon) {
    struct {
        char const* m_value;
        char const* m_date; // empty: none
    } const cases[] = {
        {"from a by b; Tue, 14 May 2024 09:12:53 +0200 (CEST)", "2024-05-14 07:12:53"},
        {"from a (x; y) by b;\n\tTue, 14 May 2024 09:12:53 -0000", "2024-05-14 09:12:53"},
        {"from a by b; 1 Jan 1970 00:00:01 GMT", "1970-01-01 00:00:01"},
        {"from a by b", ""},
        {"from a by b;", ""},
        {"from a by b; yesterday", ""},
        {"from a by b; Fri, 31 Dec 9999 23:59:59 -1200", ""},
    };
    for (auto const& row : cases) {
        auto const date = hopDate(row.m_value);
        EXPECT_EQ(date ? dateText(*date) : "", row.m_date) << row.m_value;
    }
    EXPECT_EQ(timestamp(0), "1970-01-01T00:00:00Z");
}

TEST(ReceivedDate, IsThatOfTheNewestHop) {
    EXPECT_EQ(receivedDate(
                  HeaderReader::read("Received: from a by b; Tue, 14 May 2024 09:12:53 +0000\n"
                                     "Received: from c by a; Tue, 14 May 2024 09:12:50 +0000\n\n")),
              hopDate("; Tue, 14 May 2024 09:12:53 +0000"));
    EXPECT_EQ(receivedDate(HeaderContainer()), std::nullopt);
}

TEST(MessageIdentity, HoldsTheLastOfSeveralFieldsUnfoldedAndDecoded) {
    auto const summary = identityOf(
        HeaderReader::read("Received: from a by b; Tue, 14 May 2024 09:12:53 +0000\n"
                           "Received: from c by a; Tue, 14 May 2024 09:12:50 +0000\n"
                           "Subject: first\nSUBJECT: =?utf-8?q?se?=\r\n =?utf-8?q?cond?=\n"
                           "From:\n Ann\n\t<ann@example.net>\nMessage-Id: <1@a>\n"
                           "Date: tomorrow\n\n"));
    EXPECT_EQ(summary.m_subject, "second");
    EXPECT_EQ(summary.m_from, "Ann <ann@example.net>");
    EXPECT_EQ(summary.m_messageId, "<1@a>");
    EXPECT_EQ(summary.m_date, "tomorrow");
    auto const nothing = identityOf(HeaderContainer());
    EXPECT_FALSE(nothing.m_date || nothing.m_messageId || nothing.m_from || nothing.m_subject);
}

} // namespace

} // namespace Quorvane::Testing
