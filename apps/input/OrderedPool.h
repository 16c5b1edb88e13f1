// SPDX-License-Identifier: Apache-2.0
//
// OrderedPool: processes messages on several threads and delivers the results in the order of the
// messages. The queue is bounded, in number and in bytes: submit waits.
//
// One thread submits. `work` is called on many threads at once; what it returns is called on one
// thread at a time, in order. An exception of either ends the pool; finish rethrows it.
#pragma once

#include "apps/input/Inputs.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace Quorvane {

class OrderedPool {
  public:
    // Delivers a result. False: no more results are wanted.
    using Hand = std::function<bool()>;
    using Work = std::function<Hand(InputItem const&)>;

    // 0 threads: one per core.
    OrderedPool(unsigned int threads, Work work);
    OrderedPool(OrderedPool const&) = delete;
    OrderedPool& operator=(OrderedPool const&) = delete;
    ~OrderedPool();

    // False when no more results are wanted, or after an exception.
    bool submit(InputItem item);
    // Waits for what was submitted; rethrows an exception.
    void finish();

  private:
    struct Batch {
        std::vector<InputItem> m_items;
        std::vector<Hand> m_results;
        std::size_t m_bytes = 0;
        bool m_isDone = false;
    };

    void queueOpen();
    Batch* nextBatch(std::unique_lock<std::mutex>& lock);
    void run();
    void workOn(Batch& batch);
    void deliver(std::unique_lock<std::mutex>& lock);
    bool handOn(Batch const& batch);
    void close();

    Work m_work;
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
