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

TEST(Utf8, PrintableTextShowsWhatTurnsItsOrderAround) {
    // The name of a file that ends in "exe" and seems to end in "doc", and the like.
    EXPECT_EQ(toPrintable("annual\u202Ecod.exe\u202C"), "annual\\u202Ecod.exe\\u202C");
    EXPECT_EQ(toPrintable("\u061C\u200E\u200F\u202A\u202C\u2066\u2069"),
              "\\u061C\\u200E\\u200F\\u202A\\u202C\\u2066\\u2069");
    EXPECT_EQ(toPrintable("two\u2028lines\u2029here"), "two\\u2028lines\\u2029here");
    // Writing that runs from right to left, and joiners that some languages need, stay.
    EXPECT_EQ(toPrintable("\u05D0\u0627\u200D\u2027\u202F\u2065\u206A"),
              "\u05D0\u0627\u200D\u2027\u202F\u2065\u206A");
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
    EXPECT_EQ(padded("├─", 4), "├─  ");
    EXPECT_EQ(padded("abc", 2), "abc");
}

TEST(Utf8, ShortenedTextKeepsItsStartAndWholeCharacters) {
    EXPECT_EQ(shortened("abcdef", 6), "abcdef");
    EXPECT_EQ(shortened("abcdefg", 6), "abc...");
    EXPECT_EQ(shortened("éééé", 4), "éééé");
    EXPECT_EQ(shortened("ééééé", 4), "é...");
    EXPECT_EQ(shortened("abc", 2), "..");
}

} // namespace

} // namespace Quorvane::Testing
