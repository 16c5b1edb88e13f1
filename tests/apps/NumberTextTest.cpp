// SPDX-License-Identifier: Apache-2.0
#include "apps/common/NumberText.h"

#include <gtest/gtest.h>
#include <limits>

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

} // namespace
} // namespace Quorvane::Testing
