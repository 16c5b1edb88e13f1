// SPDX-License-Identifier: Apache-2.0
#include "rules/evaluate/Wilson.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

struct WilsonCase {
    char const* m_origin;
    Rate m_rate;
    double m_low;
    double m_high;
};

constexpr WilsonCase cases[] = {
    {"Newcombe 1998, table I (a)", {81, 263}, 0.2553, 0.3662},
    {"Newcombe 1998, table I (b)", {15, 148}, 0.0624, 0.1605},
    {"Newcombe 1998, table I (c)", {0, 20}, 0.0, 0.1611},
    {"Newcombe 1998, table I (d)", {1, 29}, 0.0061, 0.1718},
    {"all of few", {3, 3}, 0.4385, 1.0},
};

TEST(Wilson, GivesThePublishedIntervals) {
    for (auto const& one : cases) {
        auto const interval = wilsonInterval(one.m_rate);
        EXPECT_NEAR(interval.m_low, one.m_low, 5e-5) << one.m_origin;
        EXPECT_NEAR(interval.m_high, one.m_high, 5e-5) << one.m_origin;
    }
}

TEST(Wilson, KnowsNothingWithoutMessages) {
    auto const interval = wilsonInterval({0, 0});
    EXPECT_EQ(interval.m_low, 0.0);
    EXPECT_EQ(interval.m_high, 1.0);
    EXPECT_EQ(Rate{}.value(), 0.0);
}

} // namespace
} // namespace Quorvane::Testing
