// SPDX-License-Identifier: Apache-2.0
#include "apps/input/OrderedPool.h"

#include <atomic>
#include <gtest/gtest.h>
#include <stdexcept>

namespace Quorvane::Testing {

namespace {

InputItem s_item(int number) {
    InputItem item;
    item.m_source = std::to_string(number);
    return item;
}

// Submits messages until the pool wants no more; how many those were.
int s_submit(OrderedPool& pool, int count) {
    int number = 0;
    while (number < count && pool.submit(s_item(number))) {
        ++number;
    }
    return number;
}

TEST(OrderedPool, HandsResultsOnInOrder) {
    std::vector<std::string> taken;
    OrderedPool pool(4, [&taken](InputItem const& item) {
        return [&taken, source = item.m_source] {
            taken.push_back(source);
            return true;
        };
    });
    EXPECT_EQ(s_submit(pool, 2000), 2000);
    pool.finish();
    ASSERT_EQ(taken.size(), 2000U);
    for (std::size_t i = 0; i < taken.size(); ++i) {
        ASSERT_EQ(taken[i], std::to_string(i));
    }
}

TEST(OrderedPool, EndsWhenNothingMoreIsWanted) {
    int taken = 0;
    OrderedPool pool(
        4, [&taken](InputItem const& /*item*/) { return [&taken] { return ++taken < 10; }; });
    // Far more than may wait.
    EXPECT_LT(s_submit(pool, 1000000), 1000000);
    pool.finish();
    EXPECT_EQ(taken, 10);
}

TEST(OrderedPool, WhatIsThrownForAMessageComesOutInItsTurn) {
    std::vector<std::string> taken;
    OrderedPool pool(4, [&taken](InputItem const& item) -> OrderedPool::Hand {
        if (item.m_source == "100" || item.m_source == "500") {
            throw std::runtime_error(item.m_source);
        }
        return [&taken, source = item.m_source] {
            taken.push_back(source);
            return true;
        };
    });
    s_submit(pool, 2000);
    try {
        pool.finish();
        FAIL() << "nothing was thrown";
    } catch (std::runtime_error const& error) {
        EXPECT_STREQ(error.what(), "100");
    }
    ASSERT_EQ(taken.size(), 100U);
    EXPECT_EQ(taken.back(), "99");
}

} // namespace

} // namespace Quorvane::Testing
