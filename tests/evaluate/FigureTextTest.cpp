// SPDX-License-Identifier: Apache-2.0
#include "rules/evaluate/FigureText.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

TEST(FigureText, PercentagesOfRareThingsHaveAThirdDigit) {
    EXPECT_EQ(percentText(0.849), "84.90 %");
    EXPECT_EQ(percentText(0.00099), "0.099 %");
    EXPECT_EQ(percentText(0.0), "0 %");
    EXPECT_EQ(percentText(1.0), "100 %");
    EXPECT_EQ(percentText(0.99999), "100.00 %");
}

TEST(FigureText, RatesCarryTheirInterval) {
    EXPECT_EQ(rateText({50, 100}), "50 of 100 (50.00 %; 40.38 to 59.62)");
    EXPECT_EQ(intervalText({50, 100}), "40.38 to 59.62 %");
    EXPECT_EQ(rateText({0, 0}), "none of 0");
}

} // namespace
} // namespace Quorvane::Testing
