// SPDX-License-Identifier: Apache-2.0
#include "apps/input/OrderedPool.h"
#include "support/ReadFile.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <latch>
#include <new>
#include <pthread.h>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

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

// A source of `count` messages.
OrderedPool::Source s_source(int count) {
    return [number = 0, count](InputItem& item, OrderedPool& /*pool*/) mutable {
        item.m_source = std::to_string(number);
        return number++ < count;
    };
}

void s_doNothing(InputItem const& /*item*/, std::size_t /*place*/) {}

// Notes what is delivered: the name of a message and its problem.
OrderedPool::Take s_noteIn(std::vector<std::string>& taken) {
    return [&taken](InputItem const& item, std::size_t /*place*/) {
        taken.push_back(item.m_source + item.m_problem);
        return true;
    };
}

void s_expectAll(std::vector<std::string> const& taken, std::size_t count) {
    ASSERT_EQ(taken.size(), count);
    for (std::size_t i = 0; i < count; ++i) {
        ASSERT_EQ(taken[i], std::to_string(i));
    }
}

TEST(OrderedPool, HandsResultsOnInOrder) {
    std::vector<std::string> results(OrderedPool::places(4));
    std::vector<std::string> taken;
    OrderedPool pool(4, {[&](InputItem const& item, std::size_t place) {
                             EXPECT_EQ(results[place], "") << "the place is another message's";
                             results[place] = item.m_source;
                         },
                         [&](InputItem const& item, std::size_t place) {
                             EXPECT_EQ(results[place], item.m_source);
                             taken.push_back(std::exchange(results[place], ""));
                             return true;
                         }});
    EXPECT_EQ(s_submit(pool, 20000), 20000);
    pool.finish();
    s_expectAll(taken, 20000);
}

TEST(OrderedPool, ReadsItsSourceToTheEnd) {
    for (unsigned int const threads : {1U, 2U, 7U}) {
        std::vector<std::string> taken;
        std::vector<bool> ends;
        OrderedPool pool(threads, {s_doNothing, s_noteIn(taken), s_source(20000),
                                   [&](bool isEnd, std::exception_ptr const& thrown) {
                                       EXPECT_EQ(thrown, nullptr);
                                       ends.push_back(isEnd);
                                   }});
        pool.finish();
        s_expectAll(taken, 20000);
        EXPECT_EQ(std::count(ends.begin(), ends.end(), true), 1);
        EXPECT_TRUE(ends.back());
    }
}

TEST(OrderedPool, AnEmptySourceHasAnEnd) {
    std::vector<std::string> taken;
    bool isAtEnd = false;
    OrderedPool pool(2, {s_doNothing, s_noteIn(taken), s_source(0),
                         [&](bool isEnd, std::exception_ptr const&) { isAtEnd = isEnd; }});
    pool.finish();
    EXPECT_TRUE(isAtEnd);
    EXPECT_TRUE(taken.empty());
}

TEST(OrderedPool, WhatItsSourceThrowsComesAfterTheResultsBefore) {
    std::vector<std::string> taken;
    std::exception_ptr told;
    OrderedPool pool(3, {s_doNothing, s_noteIn(taken),
                         [source = s_source(1000)](InputItem& item, OrderedPool& all) mutable {
                             return source(item, all) ? true : throw std::runtime_error("broken");
                         },
                         [&](bool isEnd, std::exception_ptr const& thrown) {
                             EXPECT_EQ(isEnd, thrown != nullptr);
                             told = thrown;
                         }});
    EXPECT_THROW(pool.finish(), std::runtime_error);
    s_expectAll(taken, 1000);
    EXPECT_NE(told, nullptr);
}

// The source goes on only when what it has given before is delivered: a writer who waits for an
// answer before it sends more. Batches are of many messages by then.
TEST(OrderedPool, WhatWasReadDoesNotWaitForASourceThatWaits) {
    for (unsigned int const threads : {1U, 2U, 7U}) {
        std::atomic<int> delivered{0};
        std::vector<std::string> taken;
        OrderedPool pool(threads, {s_doNothing,
                                   [&](InputItem const& item, std::size_t /*place*/) {
                                       taken.push_back(item.m_source);
                                       ++delivered;
                                       delivered.notify_one();
                                       return true;
                                   },
                                   [&, number = 0](InputItem& item, OrderedPool& all) mutable {
                                       if (number % 700 == 1 || number % 700 == 77) {
                                           all.sourceWaits();
                                           for (int now = 0; (now = delivered) < number;) {
                                               delivered.wait(now);
                                           }
                                       }
                                       item.m_source = std::to_string(number);
                                       return number++ < 5000;
                                   }});
        pool.finish();
        s_expectAll(taken, 5000);
    }
}

// No more messages are read than have places.
TEST(OrderedPool, ASourceIsReadNoFurtherThanThereAreResultsTaken) {
    std::atomic<std::size_t> read{0};
    std::size_t taken = 0;
    OrderedPool pool(2, {s_doNothing,
                         [&](InputItem const& /*item*/, std::size_t /*place*/) {
                             ++taken;
                             EXPECT_LE(read - taken, OrderedPool::places(2));
                             return true;
                         },
                         [&](InputItem& item, OrderedPool& /*pool*/) {
                             item.m_source = "x";
                             return ++read <= 50000;
                         }});
    pool.finish();
    EXPECT_EQ(taken, 50000U);
}

TEST(OrderedPool, EndsWhenNothingMoreIsWanted) {
    int taken = 0;
    auto const takeTen = [&taken](InputItem const&, std::size_t) { return ++taken < 10; };
    OrderedPool pool(4, {s_doNothing, takeTen});
    // Far more than may wait.
    EXPECT_LT(s_submit(pool, 1000000), 1000000);
    pool.finish();
    EXPECT_EQ(taken, 10);

    taken = 0;
    OrderedPool reading(4, {s_doNothing, takeTen, s_source(1000000)});
    reading.finish();
    EXPECT_EQ(taken, 10);
}

TEST(OrderedPool, WhatIsThrownForAMessageComesOutInItsTurn) {
    std::vector<std::string> taken;
    OrderedPool pool(4, {[](InputItem const& item, std::size_t /*place*/) {
                             if (item.m_source == "100" || item.m_source == "500") {
                                 throw std::runtime_error(item.m_source);
                             }
                         },
                         s_noteIn(taken)});
    s_submit(pool, 2000);
    try {
        pool.finish();
        FAIL() << "nothing was thrown";
    } catch (std::runtime_error const& error) {
        EXPECT_STREQ(error.what(), "100");
    }
    s_expectAll(taken, 100);
}

// A message that the memory is too small for becomes a problem that bears its name; the others are
// judged as ever.
TEST(OrderedPool, AMessageThatDoesNotFitIsAProblemInItsTurn) {
    std::vector<std::string> taken;
    OrderedPool pool(4, {[](InputItem const& item, std::size_t /*place*/) {
                             if (item.m_source == "100" && item.m_problem.empty()) {
                                 throw std::bad_alloc();
                             }
                         },
                         s_noteIn(taken)});
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
    auto const work = [&](InputItem const& item, std::size_t /*place*/) {
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
    };
    OrderedPool pool(4, {work, s_noteIn(taken)});
    EXPECT_EQ(s_submit(pool, 1000), 1000);
    pool.finish();
    s_expectAll(taken, 1000);
}

// The third message is in hand when the stop is requested.
TEST(OrderedPool, ARequestToStopDeliversWhatIsDoneAndDropsTheRest) {
    std::vector<std::string> taken;
    std::stop_source stop;
    OrderedPool pool(1,
                     {[&](InputItem const& item, std::size_t /*place*/) {
                          if (item.m_source == "3") {
                              stop.request_stop();
                          }
                      },
                      s_noteIn(taken)},
                     stop.get_token());
    EXPECT_LT(s_submit(pool, 1000000), 1000000);
    pool.finish();
    EXPECT_EQ(taken, (std::vector<std::string>{"0", "1", "2"}));
}

// Messages that take long are shared one by one: each thread has one of the first four.
TEST(OrderedPool, SlowMessagesAreSharedAmongTheThreads) {
    std::latch areAtWork(4);
    std::vector<std::string> taken;
    OrderedPool pool(4, {[&](InputItem const& item, std::size_t /*place*/) {
                             if (std::stoi(item.m_source) < 4) {
                                 areAtWork.arrive_and_wait();
                             }
                         },
                         s_noteIn(taken), s_source(100)});
    pool.finish();
    s_expectAll(taken, 100);
}

// No message is done before the call returns.
TEST(OrderedPool, WhereThereIsNoRoomMessagesCanBeLeftOut) {
    std::latch mayWork(1);
    std::vector<std::string> taken;
    OrderedPool pool(2, {[&](InputItem const& /*item*/, std::size_t /*place*/) { mayWork.wait(); },
                         s_noteIn(taken)});
    std::vector<InputItem> items;
    for (int i = 0; i < 5000; ++i) {
        items.push_back(s_item(i));
    }
    pool.submitThoseWithRoom(items);
    ASSERT_FALSE(items.empty());
    ASSERT_LT(items.size(), 5000U);
    EXPECT_EQ(items.front().m_source, std::to_string(5000 - items.size()));
    mayWork.count_down();
    EXPECT_TRUE(pool.submit(items));
    pool.finish();
    s_expectAll(taken, 5000);
}

// Whether all threads of this process but the calling one wait.
bool s_doAllOthersWait() {
    auto const own = std::to_string(::gettid());
    for (auto const& task : std::filesystem::directory_iterator("/proc/self/task")) {
        auto const stat = readFile(task.path() / "stat");
        auto const state = stat.substr(std::min(stat.rfind(") "), stat.size())).substr(0, 3);
        if (task.path().filename() != own && state != ") S") {
            return false;
        }
    }
    return true;
}

// The first message is as large as all that may wait, so the other threads have nothing to read
// into when its result is refused.
TEST(OrderedPool, ThreadsThatWaitForRoomEndWhenNothingMoreIsWanted) {
    auto const refuse = [](InputItem const& /*item*/, std::size_t /*place*/) {
        while (!s_doAllOthersWait()) {
            std::this_thread::yield();
        }
        return false;
    };
    OrderedPool pool(5, {s_doNothing, refuse, [](InputItem& item, OrderedPool& /*pool*/) {
                             item.m_headers.assign(std::size_t{64} << 20, 'x');
                             return true;
                         }});
    pool.finish();
}

// There are addresses for the stacks of a few threads only.
TEST(OrderedPool, FewerThreadsThanWantedDoTheWork) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers reserve more addresses than any limit leaves";
#endif
    auto const judge = [] {
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstacksize(&attributes, std::size_t{8} << 20);
        pthread_setattr_default_np(&attributes);
        auto const pages = std::stoull(readFile("/proc/self/statm"));
        auto const size = pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) + (rlim_t{40} << 20);
        rlimit const limit{size, size};
        ::setrlimit(RLIMIT_AS, &limit);
        std::vector<std::string> taken;
        OrderedPool pool(64, {s_doNothing, s_noteIn(taken), s_source(2000)});
        pool.finish();
        std::_Exit(taken.size() == 2000 ? 0 : 1);
    };
    EXPECT_EXIT(judge(), testing::ExitedWithCode(0), "");
}

// Each of the last messages takes a millisecond at least, however fast the machine is. As many as
// have places may have been read in large batches before the first of them is done.
TEST(OrderedPool, BatchesGetSmallWhenMessagesGetSlow) {
    constexpr int quick = 300;
    int const all = quick + static_cast<int>(OrderedPool::places(4)) + 200;
    std::vector<int> batches{0};
    OrderedPool pool(4, {[](InputItem const& item, std::size_t /*place*/) {
                             if (std::stoi(item.m_source) >= quick) {
                                 std::this_thread::sleep_for(std::chrono::milliseconds(1));
                             }
                         },
                         [&](InputItem const& /*item*/, std::size_t /*place*/) {
                             ++batches.back();
                             return true;
                         },
                         s_source(all),
                         [&](bool isEnd, std::exception_ptr const& /*thrown*/) {
                             if (!isEnd) {
                                 batches.push_back(0);
                             }
                         }});
    pool.finish();
    batches.pop_back();
    ASSERT_GT(batches.size(), 20U);
    EXPECT_EQ(std::vector<int>(batches.end() - 20, batches.end()), std::vector<int>(20, 1));
}

} // namespace

} // namespace Quorvane::Testing
