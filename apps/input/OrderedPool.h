// SPDX-License-Identifier: Apache-2.0
//
// OrderedPool: processes messages on several threads and delivers the results in the order of the
// messages. The queue is bounded, in number and in bytes: submit waits.
//
// One thread submits. `work` is called on many threads at once; what it returns is called on one
// thread at a time, in order. An exception of either ends the pool; finish rethrows it. So does a
// request to stop: the results that are there by then are delivered, up to the first that is not.
#pragma once

#include "apps/input/Inputs.h"
#include "apps/input/Interrupt.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <stop_token>
#include <thread>
#include <vector>

namespace Quorvane {

class OrderedPool {
  public:
    // Delivers a result. False: no more results are wanted.
    using Hand = std::function<bool()>;
    using Work = std::function<Hand(InputItem const&)>;

    // 0 threads: one per core.
    OrderedPool(unsigned int threads, Work work, std::stop_token stop = {});
    OrderedPool(OrderedPool const&) = delete;
    OrderedPool& operator=(OrderedPool const&) = delete;
    ~OrderedPool();

    // False when no more results are wanted, after an exception and after a request to stop.
    bool submit(InputItem item);
    // Several at once, which locks once. Leaves `items` empty.
    bool submit(std::vector<InputItem>& items);
    // Waits for what was submitted; rethrows an exception.
    void finish();

  private:
    struct Batch {
        std::vector<InputItem> m_items;
        std::vector<Hand> m_results;
        std::size_t m_bytes = 0;
        bool m_isDone = false;
    };

    void waitForRoom(std::unique_lock<std::mutex>& lock);
    void addToOpen(InputItem item);
    void queueOpen();
    Batch* nextBatch(std::unique_lock<std::mutex>& lock);
    void run();
    Hand resultFor(InputItem const& item);
    Hand resultAlone(InputItem const& item);
    void workOn(Batch& batch);
    void deliver(std::unique_lock<std::mutex>& lock);
    bool handOn(Batch const& batch);
    bool isStopping() const { return m_isStopped || m_stop.stop_requested(); }
    void wakeAll();
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
    std::shared_mutex m_memory; // shared by threads at work, alone with what needs much memory
    bool m_isDelivering = false;
    bool m_isClosed = false;
    bool m_isStopped = false;
    std::exception_ptr m_thrown;
    std::vector<std::thread> m_threads;
    std::stop_token m_stop;
    std::stop_callback<std::function<void()>> m_onStop; // ends before the others do
};

// Submits all messages. Their number; empty when a signal came, or no more results are wanted: what
// was submitted before is still worked on.
std::optional<std::uint64_t> submitAll(OrderedPool& pool, Inputs& inputs,
                                       Interrupt const& interrupt);

} // namespace Quorvane
