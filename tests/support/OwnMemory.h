// SPDX-License-Identifier: Apache-2.0
//
// The operators new and delete of a test program that links OwnMemory.cpp: they can be made to
// fail, and they count.
#pragma once

#include <cstddef>
#include <thread>

namespace Quorvane::Testing {

// As long as it lives, one allocation of its thread fails: the `number`th, from 1. The later ones
// work again. One at a time on a thread.
class FailingAllocation {
  public:
    explicit FailingAllocation(int number);
    FailingAllocation(FailingAllocation const&) = delete;
    FailingAllocation& operator=(FailingAllocation const&) = delete;
    ~FailingAllocation();

    // False when there were fewer allocations.
    bool hasFailed() const;
};

// The most that was allocated at once since its construction, by all threads. One at a time.
class PeakMemory {
  public:
    PeakMemory();

    std::size_t bytes() const;

  private:
    std::size_t m_before;
};

// Bytes that all threads have allocated and not given back.
std::size_t memoryInUse();

// Calls `action` with the first allocation failing, then with the second, and so on until none
// fails any more; `check` is called after each, with the number. Returns how many failed. Each call
// is made on a thread of its own, which has no blocks of earlier objects to use again.
template<typename Action, typename Check>
int failEachAllocation(Action action, Check check) {
    for (int number = 1;; ++number) {
        bool hasFailed = false;
        std::thread([&] {
            FailingAllocation const failing(number);
            action();
            hasFailed = failing.hasFailed();
        }).join();
        check(number);
        if (!hasFailed) {
            return number - 1;
        }
    }
}

} // namespace Quorvane::Testing
