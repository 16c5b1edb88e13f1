// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/TextWidth.h"

#include <gtest/gtest.h>

namespace Quorvane::Charts {
namespace {

TEST(TextWidth, CountsCharactersNotBytes) {
    EXPECT_DOUBLE_EQ(textWidth("\xC3\xA9\xE2\x82\xAC"), textWidth("ab"));
    EXPECT_GT(textWidth("abc"), textWidth("ab"));
    EXPECT_EQ(textWidth(""), 0.0);
}

TEST(TextWidth, ShortensBetweenCharacters) {
    EXPECT_EQ(shortened("abcdef", textWidth("abcdef")), "abcdef");
    EXPECT_EQ(shortened("abcdef", textWidth("abcd")), "abc\xE2\x80\xA6");
    EXPECT_EQ(shortened("ab\xC3\xA9\xC3\xA9\xC3\xA9", textWidth("abcd")), "ab\xC3\xA9\xE2\x80\xA6");
    EXPECT_EQ(shortened("abc", 0.0), "\xE2\x80\xA6");
}

} // namespace
} // namespace Quorvane::Charts
