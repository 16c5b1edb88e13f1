// SPDX-License-Identifier: Apache-2.0
#include "apps/page/TextWidth.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Page;

namespace {

TEST(TextWidth, CountsCharactersNotBytes) {
    EXPECT_DOUBLE_EQ(textWidth("\xC3\xA9\xE2\x82\xAC"), textWidth("ab"));
    EXPECT_GT(textWidth("abc"), textWidth("ab"));
    EXPECT_EQ(textWidth(""), 0.0);
}

TEST(TextWidth, GrowsWithTheSizeAndTheLetters) {
    EXPECT_DOUBLE_EQ(textWidth("Mail", 24.0), 2.0 * textWidth("Mail", 12.0));
    EXPECT_LT(textWidth("illi"), textWidth("nnnn"));
    EXPECT_LT(textWidth("nnnn"), textWidth("mmmm"));
}

TEST(TextWidth, GivesAWidthToWhatAWideFontWouldNotFit) {
    auto const width = textWidth("ninety");
    EXPECT_EQ(fittingAttributes("ninety", 3.0 * width), "");
    auto const squeezed = " textLength=\"20\" lengthAdjust=\"spacingAndGlyphs\"";
    EXPECT_EQ(fittingAttributes("ninety", 20.0), squeezed);
    // Not stretched to fill its room.
    EXPECT_EQ(fittingAttributes("nnnnn", 40.0),
              " textLength=\"33\" lengthAdjust=\"spacingAndGlyphs\"");
}

TEST(TextWidth, ShortensBetweenCharacters) {
    EXPECT_EQ(shortened("abcdef", textWidth("abcdef")), "abcdef");
    EXPECT_EQ(shortened("abcdef", textWidth("abcd")), "abc\xE2\x80\xA6");
    EXPECT_EQ(shortened("ab\xC3\xA9\xC3\xA9\xC3\xA9", textWidth("abcd")), "ab\xC3\xA9\xE2\x80\xA6");
    EXPECT_EQ(shortened("abc", 0.0), "\xE2\x80\xA6");
}

} // namespace
} // namespace Quorvane::Testing
