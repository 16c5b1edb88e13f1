// SPDX-License-Identifier: Apache-2.0
#include "platform/Strings.h"

#include <clocale>
#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

std::string s_lowered(std::string text) {
    stringToLowerNoCopy(text);
    return text;
}

TEST(StringsTest, LowersAsciiLettersAndNothingElse) {
    std::string every;
    for (int byte = 0; byte < 256; ++byte) {
        every += static_cast<char>(byte);
    }
    auto const lowered = s_lowered(every);
    for (std::size_t byte = 0; byte < 256; ++byte) {
        bool const isUpper = byte >= 'A' && byte <= 'Z';
        EXPECT_EQ(lowered[byte], static_cast<char>(isUpper ? byte + 32 : byte)) << byte;
    }
}

TEST(StringsTest, LoweringDoesNotDependOnTheLocale) {
    auto const* const before = std::setlocale(LC_ALL, nullptr);
    std::string const kept = before == nullptr ? "C" : before;
    std::setlocale(LC_ALL, "C.UTF-8");
    EXPECT_EQ(s_lowered("\xc4 I"), "\xc4 i");
    std::setlocale(LC_ALL, kept.c_str());
}

TEST(StringsTest, CopiesTheLoweredPartAsked) {
    std::string lowered = "stale";
    copyStringToLower("ABC-def", lowered, 1, 4);
    EXPECT_EQ(lowered, "bc-d");
    copyStringToLower("ABC", lowered, 1, std::string::npos);
    EXPECT_EQ(lowered, "bc");
    copyStringToLower("ABC", lowered, 3, 1);
    EXPECT_EQ(lowered, "");
    EXPECT_THROW(copyStringToLower("ABC", lowered, 4, 1), std::out_of_range);
}

TEST(StringsTest, ComparesWithoutLetterCase) {
    EXPECT_EQ(stringCompareNoCase("Received", "rECEIVED", 0), 0);
    EXPECT_LT(stringCompareNoCase("Receive", "received", 0), 0);
    EXPECT_GT(stringCompareNoCase("Received:", "received", 0), 0);
    EXPECT_LT(stringCompareNoCase("a", "B", 0), 0);
    EXPECT_GT(stringCompareNoCase("b", "A", 0), 0);
    EXPECT_LT(stringCompareNoCase("a", "\xff", 0), 0) << "bytes are unsigned";
    EXPECT_NE(stringCompareNoCase("@", "`", 0), 0) << "letters only";
}

TEST(StringsTest, ComparesFromAPosition) {
    EXPECT_EQ(stringCompareNoCase("xyFrom", "from", 2), 0);
    EXPECT_EQ(stringCompareNoCase("from", "", 4), 0);
    EXPECT_EQ(stringCompareNoCase("from", "", 99), 0);
}

TEST(StringsTest, TrimsBlanksAndLineBreaksAtOneEnd) {
    std::string text = " \t\r\n a b \t\r\n ";
    stringLeftTrim(text);
    EXPECT_EQ(text, "a b \t\r\n ");
    stringRightTrim(text);
    EXPECT_EQ(text, "a b");
}

TEST(StringsTest, TrimsABlankTextToNothing) {
    for (auto* const trim : {&stringLeftTrim, &stringRightTrim}) {
        std::string text = " \t\r\n";
        trim(text);
        EXPECT_EQ(text, "");
        trim(text);
        EXPECT_EQ(text, "");
    }
}

TEST(StringsTest, OtherWhiteSpaceAndNulStay) {
    std::string text("\v\f\0", 3);
    stringLeftTrim(text);
    stringRightTrim(text);
    EXPECT_EQ(text.size(), 3U);
}

} // namespace
} // namespace Quorvane::Testing
