// SPDX-License-Identifier: Apache-2.0
#include "apps/text/NumberText.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace Quorvane::Testing {
namespace {

TEST(NumberText, KeepsTheDigitsThatCount) {
    EXPECT_EQ(numberText(0.97), "0.97");
    EXPECT_EQ(numberText(0.123456), "0.1235");
    EXPECT_EQ(numberText(12.3456, 3), "12.3");
    EXPECT_EQ(numberText(0.0), "0");
    EXPECT_EQ(numberText(0.00001), "1e-05");
    EXPECT_EQ(numberText(-std::numeric_limits<double>::max()), "-1.798e+308");
    EXPECT_EQ(numberText(-std::numeric_limits<double>::infinity()), "-inf");
}

TEST(NumberText, ExactNumbersReadBackAsTheSame) {
    EXPECT_EQ(exactNumberText(0.95), "0.95");
    EXPECT_EQ(exactNumberText(95.0), "95");
    EXPECT_EQ(exactNumberText(1.0 / 3.0), "0.3333333333333333");
    EXPECT_EQ(std::stod(exactNumberText(0.1 + 0.2)), 0.1 + 0.2);
    EXPECT_EQ(exactNumberText(-std::numeric_limits<double>::max()), "-1.7976931348623157e+308");
}

TEST(NumberText, ProbabilitiesAreShortAndOnlyCertainWhereTheyAre) {
    struct {
        double m_probability;
        char const* m_text;
    } const cases[] = {
        {0.0, "0 %"},       {0.0004, "<0.1 %"},
        {0.004, "0.4 %"},   {0.02058, "2 %"},
        {0.5574, "56 %"},   {0.9, "90 %"},
        {0.95, "95 %"},     {0.9853, "98.5 %"},
        {0.9994, "99.9 %"}, {0.9999, ">99.9 %"},
        {1.0, "100 %"},     {97.0, "(97)"},
        {-0.5, "(-0.5)"},   {std::numeric_limits<double>::quiet_NaN(), "(no number)"},
    };
    for (auto const& row : cases) {
        EXPECT_EQ(probabilityText(row.m_probability), row.m_text) << row.m_probability;
    }
}

TEST(NumberText, CountsAreGrouped) {
    EXPECT_EQ(groupedText(0), "0");
    EXPECT_EQ(groupedText(999), "999");
    EXPECT_EQ(groupedText(1000), "1,000");
    EXPECT_EQ(groupedText(1234567), "1,234,567");
}

} // namespace
} // namespace Quorvane::Testing
