// SPDX-License-Identifier: Apache-2.0
//
// OrderedPool: works on messages with several threads and hands the results on in the order of the
// messages. What waits is bounded, in number and in bytes: who submits is held back.
//
// One thread submits. `work` is called on many threads at once; what it returns is called on one
// thread at a time, in order. What they throw ends the pool and comes out of finish.
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
    // Hands a result on. False: nothing more is wanted.
    using Hand = std::function<bool()>;
    using Work = std::function<Hand(InputItem const&)>;

    // 0 threads: one for each core.
    OrderedPool(unsigned int threads, Work work);
    OrderedPool(OrderedPool const&) = delete;
    OrderedPool& operator=(OrderedPool const&) = delete;
    ~OrderedPool();

    // False when nothing more is wanted, or something was thrown.
    bool submit(InputItem item);
    // Waits for what was submitted; rethrows what was thrown.
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
