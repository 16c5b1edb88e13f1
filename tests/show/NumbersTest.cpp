// SPDX-License-Identifier: Apache-2.0
#include "apps/show/NodeText.h"
#include "apps/show/TextStyle.h"
#include "apps/text/Utf8.h"

#include <gmock/gmock.h>
#include <limits>

namespace Quorvane::Testing {

using namespace Show;

namespace {

using ::testing::ElementsAre;

TEST(NumbersTest, SharesKeepTheDigitsThatCount) {
    EXPECT_EQ(percentText(0.5), "50 %");
    EXPECT_EQ(percentText(0.12345), "12.3 %");
    EXPECT_EQ(percentText(0.0015), "0.15 %");
    EXPECT_EQ(percentText(0.99945), "99.94 %");
    EXPECT_EQ(percentText(1.0), "100 %");
    EXPECT_EQ(percentText(0.0), "0 %");
    EXPECT_EQ(percentText(-0.0), "0 %");
}

TEST(NumbersTest, WhatIsNoShareOrCountIsUnknown) {
    constexpr auto infinite = std::numeric_limits<double>::infinity();
    constexpr auto notANumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(percentText(infinite), "unknown (inf)");
    EXPECT_EQ(percentText(-0.3), "unknown (-0.3)");
    EXPECT_EQ(percentText(97.0), "unknown (97)");
    EXPECT_EQ(percentText(-notANumber), "unknown (no number)");
    EXPECT_EQ(spamShareText(0.97), "97 % spam");
    EXPECT_EQ(spamShareText(-infinite), "unknown share of spam (-inf)");
    EXPECT_EQ(spamShareText(notANumber), "unknown share of spam (no number)");
    EXPECT_EQ(supportText(14.276), "14.28 %");
    EXPECT_EQ(supportText(-0.0), "0 %");
    EXPECT_EQ(supportText(100.5), "unknown (100.5)");
    EXPECT_EQ(supportText(notANumber), "unknown (no number)");
    EXPECT_EQ(countText(-1234), "unknown (-1234)");
}

TEST(NumbersTest, CountsAreGrouped) {
    EXPECT_EQ(countText(0), "0");
    EXPECT_EQ(countText(999), "999");
    EXPECT_EQ(countText(1000), "1,000");
    EXPECT_EQ(countText(1234567), "1,234,567");
}

TEST(ShadesTest, TheEndsAreForWhatIsSure) {
    EXPECT_EQ(shadeOf(0.05), 0U);
    EXPECT_EQ(shadeOf(0.051), 1U);
    EXPECT_EQ(shadeOf(0.5), 3U);
    EXPECT_EQ(shadeOf(0.949), 5U);
    EXPECT_EQ(shadeOf(0.95), 6U);
    EXPECT_EQ(shadeOf(-7.0), 0U);
    EXPECT_EQ(shadeOf(95.0), 6U);
    EXPECT_EQ(shadeOf(std::numeric_limits<double>::quiet_NaN()), 3U);
}

TEST(TextStyleTest, LinesBreakAtBlanksOrWhereTheyMust) {
    EXPECT_THAT(wrapped("one two three", 7), ElementsAre("one two", "three"));
    EXPECT_THAT(wrapped("one two three", 8), ElementsAre("one two", "three"));
    EXPECT_THAT(wrapped("onetwothree", 4), ElementsAre("onet", "woth", "ree"));
    EXPECT_THAT(wrapped("", 4), ElementsAre(""));
    EXPECT_THAT(wrapped("ab", 1), ElementsAre("a", "b"));
}

TEST(TextStyleTest, FillsUpToAWidth) {
    EXPECT_EQ(padded("├─", 4), "├─  ");
    EXPECT_EQ(rightAligned("12", 4), "  12");
}

} // namespace
} // namespace Quorvane::Testing
