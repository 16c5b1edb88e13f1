// SPDX-License-Identifier: Apache-2.0
//
// OrderedPool: processes messages on several threads and delivers the results in the order of the
// messages. What is under way is bounded, in number and in bytes: whoever brings messages waits.
//
// One thread submits messages, or the threads of the pool take them from a source, one thread at a
// time. Each message that is under way has a place, a small number that no other has; the results
// are kept by the owner of the pool, one for each place, and used again: threads that give memory
// to each other all the time wait for each other's heaps.
//
// Threads take messages in batches, the larger the faster the work is: few locks for quick
// messages, and slow ones, which wait for DNS, one by one.
//
// Work is done on many threads at once. Results are taken on one thread at a time, in order. An
// exception of either ends the pool; finish rethrows it. So does a request to stop: the results
// that are there by then are delivered, up to the first that is not.
#pragma once

#include "apps/input/Inputs.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <shared_mutex>
#include <stop_token>
#include <thread>
#include <vector>

namespace Quorvane {

class OrderedPool {
  public:
    // Makes the result of its place.
    using Work = std::function<void(InputItem const&, std::size_t place)>;
    // Delivers it. False: no more results are wanted.
    using Take = std::function<bool(InputItem const&, std::size_t place)>;
    // The next message; false at the end. What it throws ends the messages, too. The pool, as its
    // threads may begin before its constructor ends.
    using Source = std::function<bool(InputItem&, OrderedPool&)>;
    // Called after some results that came together, and once after the last: then isEnd, with what
    // was thrown or null. On one thread at a time, as Take is.
    using Delivered = std::function<void(bool isEnd, std::exception_ptr const& thrown)>;

    struct Roles {
        Work m_work;
        Take m_take;
        Source m_source = {};       // empty: one thread submits
        Delivered m_delivered = {}; // may be empty
    };

    // How many places there are, at most. 0 threads: one per core.
    static std::size_t places(unsigned int threads);

    // Throws std::system_error when the system gives it no thread at all.
    OrderedPool(unsigned int threads, Roles roles, std::stop_token stop = {});
    OrderedPool(OrderedPool const&) = delete;
    OrderedPool& operator=(OrderedPool const&) = delete;
    ~OrderedPool();

    // False when no more results are wanted, after an exception and after a request to stop.
    bool submit(InputItem item);
    // Several at once, which locks once. Leaves `items` empty.
    bool submit(std::vector<InputItem>& items);
    // Does not wait, and leaves in `items` those for which there is no room.
    void submitThoseWithRoom(std::vector<InputItem>& items);
    // For the source, when the next message may take long: what was read does not wait for it.
    void sourceWaits();
    // Waits for what was submitted, or for all of the source; rethrows an exception.
    void finish();

  private:
    struct Batch {
        std::size_t m_firstPlace = 0;
        std::vector<InputItem> m_items;
        std::vector<std::exception_ptr> m_thrown; // by the work on each, or null
        std::size_t m_wanted = 0;                 // at most so many items
        std::size_t m_count = 0;                  // of items
        std::size_t m_worked = 0;                 // of these, with results
        std::size_t m_bytes = 0;
        bool m_isDone = false;
    };

    void startThreads();
    bool hasRoom() const;
    bool hasWork() const;
    bool mayRead() const;
    bool isStopping() const { return m_isStopped || m_stop.stop_requested(); }
    void waitForRoom(std::unique_lock<std::mutex>& lock);
    void submit(InputItem& item, std::unique_lock<std::mutex>& lock);
    void open();
    static bool isFull(Batch const& batch);
    void addToOpen(InputItem& item);
    void queueOpen();
    void readBatches(std::unique_lock<std::mutex>& lock);
    bool fillOpen(std::exception_ptr& thrown);
    Batch* takeBatch();
    Batch* nextBatch(std::unique_lock<std::mutex>& lock);
    void run();
    void work(std::unique_lock<std::mutex>& lock);
    void workOn(Batch& batch, std::unique_lock<std::mutex>& lock);
    void adaptBatches(std::size_t count, std::chrono::nanoseconds time);
    void workOn(Batch& batch);
    bool tryWorkOn(Batch& batch, std::size_t number);
    void workAlone(Batch& batch, std::size_t number);
    void deliver(std::unique_lock<std::mutex>& lock);
    bool handOn(Batch& batch);
    void recycle(Batch& batch);
    bool isAtEnd() const;
    void tellEnd(std::unique_lock<std::mutex>& lock);
    void stop();
    void wakeAll();
    void close();
    void join();

    Roles m_roles;
    std::size_t m_threadCount;
    std::mutex m_mutex;
    std::condition_variable m_hasWork; // or something may be read
    std::condition_variable m_hasRoom;
    std::vector<Batch> m_batches;
    std::vector<Batch*> m_free;
    Batch* m_open = nullptr;  // being filled: under the lock, or by the thread that reads
    std::size_t m_wanted = 1; // messages in a batch
    std::deque<Batch*> m_inOrder;
    std::deque<Batch*> m_queue;
    std::size_t m_bytes = 0;
    InputItem m_read;           // of the thread that reads
    std::shared_mutex m_memory; // shared by threads at work, alone with what needs much memory
    bool m_isReading = false;   // a thread asks the source
    bool m_isDelivering = false;
    bool m_isClosed = false;
    bool m_isStopped = false;
    bool m_isEndTold = false;
    std::exception_ptr m_thrown;
    std::vector<std::thread> m_threads;
    std::stop_token m_stop;
    std::stop_callback<std::function<void()>> m_onStop; // ends before the others do
};

} // namespace Quorvane
