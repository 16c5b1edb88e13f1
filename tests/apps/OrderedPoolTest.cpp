// SPDX-License-Identifier: Apache-2.0
#include "apps/input/OrderedPool.h"

#include <atomic>
#include <gtest/gtest.h>
#include <new>
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

// A message that the memory is too small for becomes a problem that bears its name; the others are
// judged as ever.
TEST(OrderedPool, AMessageThatDoesNotFitIsAProblemInItsTurn) {
    std::vector<std::string> taken;
    OrderedPool pool(4, [&taken](InputItem const& item) -> OrderedPool::Hand {
        if (item.m_source == "100" && item.m_problem.empty()) {
            throw std::bad_alloc();
        }
        return [&taken, text = item.m_source + item.m_problem] {
            taken.push_back(text);
            return true;
        };
    });
    EXPECT_EQ(s_submit(pool, 200), 200);
    pool.finish();
    ASSERT_EQ(taken.size(), 200U);
    EXPECT_EQ(taken[99], "99");
    EXPECT_EQ(taken[100], "100not enough memory for its header section of 0 bytes");
    EXPECT_EQ(taken[101], "101");
}

// Two messages may fit one after another where they do not fit at once.
TEST(OrderedPool, AMessageThatDoesNotFitIsTriedAgainAlone) {
    std::atomic<int> atWork{0};
    std::atomic<int> failures{0};
    std::vector<std::string> taken;
    OrderedPool pool(4, [&](InputItem const& item) -> OrderedPool::Hand {
        struct Counted {
            explicit Counted(std::atomic<int>& count) : m_count(count), m_others(count++) {}
            ~Counted() { --m_count; }
            std::atomic<int>& m_count;
            int m_others;
        };
        Counted const counted(atWork);
        if (item.m_source == "7" && failures++ == 0) {
            throw std::bad_alloc();
        }
        if (item.m_source == "7") {
            EXPECT_EQ(counted.m_others, 0) << "another message is being judged";
        }
        return [&taken, text = item.m_source + item.m_problem] {
            taken.push_back(text);
            return true;
        };
    });
    EXPECT_EQ(s_submit(pool, 1000), 1000);
    pool.finish();
    ASSERT_EQ(taken.size(), 1000U);
    EXPECT_EQ(taken[7], "7");
}

// The third message is in hand when the stop is requested.
TEST(OrderedPool, ARequestToStopDeliversWhatIsDoneAndDropsTheRest) {
    std::vector<std::string> taken;
    std::stop_source stop;
    OrderedPool pool(
        1,
        [&](InputItem const& item) {
            if (item.m_source == "3") {
                stop.request_stop();
            }
            return [&taken, source = item.m_source] {
                taken.push_back(source);
                return true;
            };
        },
        stop.get_token());
    EXPECT_LT(s_submit(pool, 1000000), 1000000);
    pool.finish();
    EXPECT_EQ(taken, (std::vector<std::string>{"0", "1", "2"}));
}

} // namespace

} // namespace Quorvane::Testing
