// SPDX-License-Identifier: Apache-2.0
#include "platform/ForkBarrier.h"

#include <atomic>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Quorvane::Testing {
namespace {

constexpr int steps = 20000;

#if defined(__SANITIZE_THREAD__)
constexpr bool isThreadSanitized = true;
#else
constexpr bool isThreadSanitized = false;
#endif

// What a lock would guard: a child that is made meanwhile sees it half done.
struct Work {
    std::atomic<bool> m_isHalfDone{false};
    std::atomic<bool> m_hasBegun{false};

    // Takes a while, whatever the machine does.
    void run() {
        ForkBarrier const barrier;
        m_isHalfDone = true;
        m_hasBegun = true;
        { ForkBarrier const nested; }
        for (int i = 0; i < steps; ++i) {
            std::this_thread::yield();
        }
        m_isHalfDone = false;
    }
};

void s_expectWholeInChild(Work& work) {
    while (!work.m_hasBegun) {
        std::this_thread::yield();
    }
    pid_t const child = fork();
    if (child == 0) {
        ForkBarrier const barrier; // works there, too
        _exit(work.m_isHalfDone ? 1 : 0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

class ForkBarrierTest : public testing::Test {
  protected:
    void SetUp() override {
        if (isThreadSanitized) {
            GTEST_SKIP() << "the sanitizer misses the threads that a child does not have";
        }
    }
};

TEST_F(ForkBarrierTest, AForkWaitsUntilItIsGone) {
    Work work;
    std::thread thread([&work] { work.run(); });
    s_expectWholeInChild(work);
    thread.join();
}

// The last objects of a thread are destroyed after its other memory has gone.
TEST_F(ForkBarrierTest, AForkWaitsForAThreadThatEnds) {
    struct AtEnd {
        Work* m_work = nullptr;
        ~AtEnd() { m_work->run(); }
    };
    Work work;
    std::thread thread([&work] {
        static thread_local AtEnd atEnd; // destroyed after what the first barrier makes
        atEnd.m_work = &work;
        ForkBarrier const barrier;
    });
    s_expectWholeInChild(work);
    thread.join();
}

TEST_F(ForkBarrierTest, AThreadMayForkUnderItsOwn) {
    ForkBarrier const barrier;
    pid_t const child = fork();
    if (child == 0) {
        std::thread([] { ForkBarrier const another; }).join();
        _exit(0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

} // namespace
} // namespace Quorvane::Testing
