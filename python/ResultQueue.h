// SPDX-License-Identifier: Apache-2.0
//
// ResultQueue: what threads have made of messages, on its way to the one thread that gives it to
// Python. Bounded: who adds waits. It knows nothing of the interpreter.
//
// Results are exchanged and their memory is used again: what a thread allocates no other one frees,
// so that they do not wait for each other's heaps.
#pragma once

#include "python/Answer.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <vector>

namespace Quorvane::Python {

struct Result {
    Judgement m_judgement;
    std::exception_ptr m_thrown; // instead of it, or null
};

// A list that only grows: what was in it serves again.
class ResultList {
  public:
    // Exchanges the result for one that is over.
    void add(Result& result);
    void add(ResultList& results);
    void clear() { m_size = 0; }
    std::size_t size() const { return m_size; }
    Result& operator[](std::size_t index) { return m_results[index]; }

  private:
    std::vector<Result> m_results;
    std::size_t m_size = 0;
};

class ResultQueue {
  public:
    // Enough that no thread waits while Python takes answers one by one.
    static constexpr std::size_t mostWaiting = 2048;

    // For one thread at a time, these three. Exchanges the result for one that is over. False:
    // there is no memory for more.
    bool add(Result& result);
    // Shows what was added, many at once, so that threads seldom wake each other. Waits for room.
    void publish();
    // After the last result; what was thrown, if anything was, ended the messages.
    void end(std::exception_ptr const& thrown);
    // No more results are wanted.
    void stop();

    // For the one that takes them.
    bool isReady();
    // Waits until isReady, or the end is there; false when that takes longer. Throws std::bad_alloc
    // when a result was lost.
    bool waitFor(std::chrono::milliseconds time);
    // The next result, which stays until the next call; null at the end. What was thrown comes
    // once. REQUIRES: waitFor or isReady said true.
    Result const* take();

  private:
    std::mutex m_mutex;
    std::condition_variable m_hasResults; // or the end
    std::condition_variable m_hasRoom;    // or nothing more is wanted
    ResultList m_results;
    std::exception_ptr m_thrown;
    bool m_isEnded = false;
    bool m_isStopped = false;
    bool m_isOutOfMemory = false;
    ResultList m_added;     // not shown yet
    ResultList m_taken;     // from m_results, all at once
    std::size_t m_next = 0; // in m_taken
};

} // namespace Quorvane::Python
