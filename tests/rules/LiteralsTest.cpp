// SPDX-License-Identifier: Apache-2.0
#include "rules/language/Literals.h"
#include "rules/language/Compiler.h"

#include <cstring>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

std::uint64_t s_bits(double number) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

double s_number(std::uint64_t bits) {
    double number = 0;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

struct NumberCase {
    double m_number;
    char const* m_text;
};

class NumberTextTest : public testing::TestWithParam<NumberCase> {};

TEST_P(NumberTextTest, IsTheShortestThatReadsBack) {
    EXPECT_EQ(numberText(GetParam().m_number), GetParam().m_text);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, NumberTextTest,
    testing::Values(NumberCase{0.1, "0.1"}, NumberCase{0.97, "0.97"}, NumberCase{100, "100"},
                    NumberCase{-0.0, "-0"}, NumberCase{1e300, "1e+300"}, NumberCase{1e-7, "1e-07"},
                    NumberCase{s_number(0x7ff0000000000000U), "inf"},
                    NumberCase{s_number(0xfff0000000000000U), "-inf"},
                    NumberCase{s_number(0x7ff8000000000001U), "bits(0x7ff8000000000001)"}));

// Through the whole language, since numbers, "inf" and bits(...) are different tokens.
RC_GTEST_PROP(NumberPropertyTest, EveryBitPatternSurvivesTheText, ()) {
    auto const special = rc::gen::element<std::uint64_t>(
        0, 0x8000000000000000U, 0x7ff0000000000000U, 0xfff0000000000000U, 0x7ff8000000000000U,
        0xfff7ffffffffffffU, 1U);
    auto const number = s_number(*rc::gen::oneOf(rc::gen::arbitrary<std::uint64_t>(), special));
    auto const text = "elite last\ndecide " + numberText(number) + " code 1 always";
    auto const compiled = compileRules(text);
    RC_ASSERT(compiled.m_errors.empty());
    double const weight = compiled.m_set.m_elite->m_rules.at(0).weight;
    RC_ASSERT(s_bits(weight) == s_bits(number));
}

RC_GTEST_PROP(BytesPropertyTest, EveryByteStringSurvivesQuotesAndHex, ()) {
    auto const bytes = *rc::gen::container<std::string>(rc::gen::arbitrary<char>());
    auto const text = quotedText(bytes);
    RC_ASSERT(unescape(std::string_view(text).substr(1, text.size() - 2)) == bytes);
    RC_ASSERT(parseHex(hexText(bytes)) == bytes);
}

TEST(LiteralsTest, WhatIsNoIntegerOf32BitsIsRefused) {
    for (auto const text :
         {"", "+", "-", "1x", "0x10", "1.0", "2147483648", "-2147483649", "+-1"}) {
        EXPECT_EQ(parseInteger(text), std::nullopt) << text;
    }
    EXPECT_EQ(parseInteger("+5"), 5);
    EXPECT_EQ(parseInteger("-2147483648"), std::numeric_limits<std::int32_t>::min());
}

TEST(LiteralsTest, WhatIsNoNumberIsRefused) {
    for (auto const text : {"", "nan", "-nan", "0.5x", "1e999", "0,5", "+-1"}) {
        EXPECT_EQ(parseNumber(text), std::nullopt) << text;
    }
    EXPECT_EQ(parseNumber("+.5"), 0.5);
}

TEST(LiteralsTest, BrokenHexAndEscapesAreRefused) {
    EXPECT_EQ(parseHex("0"), std::nullopt);
    EXPECT_EQ(parseHex("0g"), std::nullopt);
    EXPECT_EQ(parseHex("00 fF"), Bytes("\0\xff", 2));
    EXPECT_EQ(unescape("\\q"), std::nullopt);
    EXPECT_EQ(unescape("\\x1"), std::nullopt);
    EXPECT_EQ(unescape("\\"), std::nullopt);
}

} // namespace
} // namespace Quorvane::Testing
