// SPDX-License-Identifier: Apache-2.0
#include "platform/HeaderText.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace Quorvane::Testing {

namespace {

TEST(HeaderText, HasEncodedWordsAsText) {
    struct {
        std::string m_bytes;
        std::string m_text;
    } const cases[] = {
        {"plain = text_with ? marks", "plain = text_with ? marks"},
        {"", ""},
        {"=?utf-8?q?caf=C3=A9_au_lait?=", "caf\xC3\xA9 au lait"},
        {"=?ISO-8859-1?Q?caf=E9?= today", "caf\xC3\xA9 today"},
        {"=?UTF-8?B?R3LDvMOfZQ==?=", "Gr\xC3\xBC\xC3\x9F"
                                     "e"},
        {"=?utf-8*de?q?a=3Fb?=", "a?b"},
        // Blanks between words are for the line's length alone.
        {"=?utf-8?q?a?= \t =?utf-8?q?b?= c", "ab c"},
        {"=?utf-8?q?a?= x =?utf-8?q?b?=", "a x b"},
        {"=?utf-8?q?\?=", ""},
        // Words that are not quite right, or in a character set that does not exist.
        {"=?utf-8?x?abc?=", "=?utf-8?x?abc?="},
        {"=?utf-8?q?a b?=", "a b"},
        {"=?utf-8?q?open", "=?utf-8?q?open"},
        {"=?no-such-set?q?abc?=", "abc"},
        {"=?../x//TRANSLIT?q?abc?=", "abc"},
        {"=?utf-8?q?=FF?=", "?"},
        {"=?", "=?"},
        {"=?a?q", "=?a?q"},
        {std::string("a\0b", 3), "a b"},
    };
    for (auto const& row : cases) {
        EXPECT_EQ(headerText(row.m_bytes), row.m_text) << row.m_bytes;
    }
}

// The encoded word sees to it that the mail library reads the whole.
RC_GTEST_PROP(HeaderText, PlainTextIsWhatTheMailLibraryMakesOfIt, ()) {
    auto text = *rc::gen::container<std::string>(
        rc::gen::oneOf(rc::gen::inRange(' ', '\x7f'), rc::gen::element('=', ' ', '?', '_')));
    while (text.find("=?") != std::string::npos) {
        text.erase(text.find("=?"), 2);
    }
    RC_ASSERT(headerText(text) + ". w" == headerText(text + ". =?us-ascii?q?w?="));
}

} // namespace

} // namespace Quorvane::Testing
