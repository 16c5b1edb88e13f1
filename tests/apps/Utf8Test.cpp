// SPDX-License-Identifier: Apache-2.0
#include "apps/text/Utf8.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

namespace {

struct Utf8Case {
    char const* m_why;
    std::string m_bytes;
    std::string m_text;
};

// RFC 3629 sections 3 and 4.
Utf8Case const utf8Cases[] = {
    {"ASCII", "a\tb", "a\tb"},
    {"NUL is a character", std::string("a\0b", 3), std::string("a\0b", 3)},
    {"two bytes", "\xC3\xA9", "\xC3\xA9"},
    {"three bytes", "\xE2\x82\xAC", "\xE2\x82\xAC"},
    {"four bytes", "\xF0\x9F\x93\xA7", "\xF0\x9F\x93\xA7"},
    {"the last character", "\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
    {"Latin-1", "\xE9t\xE9", "\xC3\xA9t\xC3\xA9"},
    {"a lone continuation byte", "\x80", "\xC2\x80"},
    {"cut off at the end", "\xE2\x82", "\xC3\xA2\xC2\x82"},
    {"cut off by ASCII", "\xE2\x82x", "\xC3\xA2\xC2\x82x"},
    {"overlong slash", "\xC0\xAF", "\xC3\x80\xC2\xAF"},
    {"overlong in three bytes", "\xE0\x80\xAF", "\xC3\xA0\xC2\x80\xC2\xAF"},
    {"a surrogate", "\xED\xA0\x80", "\xC3\xAD\xC2\xA0\xC2\x80"},
    {"beyond U+10FFFF", "\xF4\x90\x80\x80", "\xC3\xB4\xC2\x90\xC2\x80\xC2\x80"},
    {"bytes that no encoding has", "\xFE\xFF", "\xC3\xBE\xC3\xBF"},
    {"good after bad", "\xFF\xC3\xA9", "\xC3\xBF\xC3\xA9"},
};

TEST(Utf8, KeepsWhatIsValidAndShowsOtherBytesByNumber) {
    for (auto const& row : utf8Cases) {
        EXPECT_EQ(toUtf8(row.m_bytes), row.m_text) << row.m_why;
    }
}

TEST(Utf8, ConvertedTextStaysAsItIs) {
    for (auto const& row : utf8Cases) {
        EXPECT_EQ(toUtf8(toUtf8(row.m_bytes)), row.m_text) << row.m_why;
    }
}

TEST(Utf8, PrintableLinesKeepTheirBreaksAndNoOtherControl) {
    EXPECT_EQ(toPrintableLines("a\x1B[31m\n\nb\r\n"), "a\\x1B[31m\n\nb\\x0D\n");
    EXPECT_EQ(toPrintableLines("no break"), "no break");
    EXPECT_EQ(toPrintableLines(""), "");
}

TEST(Utf8, PrintableTextHoldsNoControls) {
    EXPECT_EQ(toPrintable("a\x1B[31mb\n\x7F"), "a\\x1B[31mb\\x0A\\x7F");
    EXPECT_EQ(toPrintable("\xC2\x9B"
                          "0m"),
              "\\x9B0m");
    EXPECT_EQ(toPrintable("\x9B"), "\\x9B");
    EXPECT_EQ(toPrintable("\xC3\xA9 \xC2\xA0"), "\xC3\xA9 \xC2\xA0");
}

TEST(Utf8, ColumnsCountCharacters) {
    EXPECT_EQ(columns(""), 0U);
    EXPECT_EQ(columns("├─ 3"), 4U);
}

} // namespace

} // namespace Quorvane::Testing
