// SPDX-License-Identifier: Apache-2.0
//
// OrderedPool: works on items with several threads and hands the results on in the order of the
// items. What waits is bounded, in number and in bytes: who submits is held back.
//
// One thread submits. `work` is called on many threads at once, `sink` on one at a time, in order.
// What they throw ends the pool and comes out of finish.
#pragma once

#include "apps/input/Inputs.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Quorvane {

// What is to be written for one message, and what it means for the exit status.
struct ScanResult {
    std::string m_output;
    std::string m_errors;
    bool m_isSpam = false;
    int m_exitCode = 0; // of a problem
};

class OrderedPool {
  public:
    using Work = std::function<ScanResult(InputItem const&)>;
    // False: nothing more is wanted.
    using Sink = std::function<bool(ScanResult const&)>;

    OrderedPool(unsigned int threads, Work work, Sink sink);
    OrderedPool(OrderedPool const&) = delete;
    OrderedPool& operator=(OrderedPool const&) = delete;
    ~OrderedPool();

    // False when the sink wants nothing more, or something was thrown.
    bool submit(InputItem item);
    // Waits for what was submitted; rethrows what was thrown.
    void finish();

  private:
    struct Batch {
        std::vector<InputItem> m_items;
        std::vector<ScanResult> m_results;
        std::size_t m_bytes = 0;
        bool m_isDone = false;
    };

    void queueOpen();
    Batch* nextBatch(std::unique_lock<std::mutex>& lock);
    void run();
    void workOn(Batch& batch);
    void deliver(std::unique_lock<std::mutex>& lock);
    bool hand(Batch const& batch);
    void close();

    Work m_work;
    Sink m_sink;
    std::size_t m_maxBatches;
    std::mutex m_mutex;
    std::condition_variable m_hasWork;
    std::condition_variable m_hasRoom;
    std::unique_ptr<Batch> m_open; // being filled
    std::deque<std::unique_ptr<Batch>> m_inOrder;
    std::deque<Batch*> m_queue;
    std::size_t m_bytes = 0;
    bool m_isDelivering = false;
    bool m_isClosed = false;
    bool m_isStopped = false;
    std::exception_ptr m_thrown;
    std::vector<std::thread> m_threads;
};

} // namespace Quorvane
