// SPDX-License-Identifier: Apache-2.0
#include "apps/input/OrderedPool.h"

#include "apps/commandline/ProgramError.h"

#include <algorithm>
#include <new>
#include <utility>

namespace Quorvane {

namespace {

// Large enough that locking costs little, small enough that results do not wait long.
constexpr std::size_t batchItems = 32;
constexpr std::size_t batchesPerThread = 4;
// Header sections that wait; one alone may be larger.
constexpr std::size_t maxWaitingBytes = std::size_t{64} << 20;
constexpr std::size_t batchBytes = std::size_t{1} << 20;

} // namespace

OrderedPool::OrderedPool(unsigned int threads, Work work, std::stop_token stop)
    : m_work(std::move(work)), m_open(std::make_unique<Batch>()), m_stop(std::move(stop)),
      m_onStop(m_stop, [this] { wakeAll(); }) {
    threads = threads != 0 ? threads : std::max(1U, std::thread::hardware_concurrency());
    m_maxBatches = threads * batchesPerThread;
    for (unsigned int i = 0; i < threads; ++i) {
        m_threads.emplace_back(&OrderedPool::run, this);
    }
}

OrderedPool::~OrderedPool() {
    close();
}

bool OrderedPool::submit(InputItem item) {
    std::unique_lock lock(m_mutex);
    waitForRoom(lock);
    addToOpen(std::move(item));
    m_hasWork.notify_one();
    return !isStopping();
}

bool OrderedPool::submit(std::vector<InputItem>& items) {
    std::unique_lock lock(m_mutex);
    for (auto& item : items) {
        waitForRoom(lock);
        addToOpen(std::move(item));
    }
    items.clear();
    m_hasWork.notify_one();
    return !isStopping();
}

// REQUIRES, as the next two: m_mutex is held.
void OrderedPool::waitForRoom(std::unique_lock<std::mutex>& lock) {
    m_hasRoom.wait(lock, [this] {
        return isStopping() || m_inOrder.empty() ||
               (m_inOrder.size() < m_maxBatches && m_bytes < maxWaitingBytes);
    });
}

void OrderedPool::addToOpen(InputItem item) {
    m_open->m_bytes += item.m_headers.size() + (item.m_copy ? item.m_copy->cost() : 0);
    m_open->m_items.push_back(std::move(item));
    if (m_open->m_items.size() >= batchItems || m_open->m_bytes >= batchBytes) {
        queueOpen();
    }
}

// Under the lock, so that no thread is between its look at the state and its wait.
void OrderedPool::wakeAll() {
    std::lock_guard const lock(m_mutex);
    m_hasRoom.notify_all();
    m_hasWork.notify_all();
}

void OrderedPool::queueOpen() {
    m_bytes += m_open->m_bytes;
    m_queue.push_back(m_open.get());
    m_inOrder.push_back(std::move(m_open));
    m_open = std::make_unique<Batch>();
    m_open->m_items.reserve(batchItems);
}

void OrderedPool::finish() {
    close();
    if (m_thrown) {
        std::rethrow_exception(m_thrown);
    }
}

void OrderedPool::close() {
    {
        std::lock_guard const lock(m_mutex);
        m_isClosed = true;
    }
    m_hasWork.notify_all();
    for (auto& thread : m_threads) {
        thread.join();
    }
    m_threads.clear();
}

// The batch to work on next. A thread that would have to wait takes the open one, full or not:
// input may come slowly. Null at the end. REQUIRES: m_mutex is held.
OrderedPool::Batch* OrderedPool::nextBatch(std::unique_lock<std::mutex>& lock) {
    m_hasWork.wait(lock, [this] {
        return m_isClosed || isStopping() || !m_queue.empty() || !m_open->m_items.empty();
    });
    if (m_queue.empty() && !m_open->m_items.empty()) {
        queueOpen();
    }
    if (m_queue.empty() || m_stop.stop_requested()) {
        return nullptr;
    }
    auto* const batch = m_queue.front();
    m_queue.pop_front();
    return batch;
}

void OrderedPool::run() {
    std::unique_lock lock(m_mutex);
    while (auto* const batch = nextBatch(lock)) {
        bool const isWanted = !m_isStopped;
        lock.unlock();
        if (isWanted) {
            workOn(*batch);
        }
        lock.lock();
        batch->m_isDone = true;
        deliver(lock);
    }
}

// An exception for a message is delivered in its turn.
OrderedPool::Hand OrderedPool::resultFor(InputItem const& item) {
    try {
        try {
            std::shared_lock const lock(m_memory);
            return m_work(item);
        } catch (std::bad_alloc const&) {
            return resultAlone(item);
        }
    } catch (...) {
        return [thrown = std::current_exception()]() -> bool { std::rethrow_exception(thrown); };
    }
}

// Perhaps a message on another thread has taken the memory. One that does not fit alone is a
// problem like one that cannot be read.
OrderedPool::Hand OrderedPool::resultAlone(InputItem const& item) {
    std::lock_guard const lock(m_memory);
    try {
        return m_work(item);
    } catch (std::bad_alloc const&) {
        return m_work({item.m_source, {}, noMemoryFor(item.m_headers.size()), ExitStatus::badData});
    }
}

// A result that the request to stop may have spoilt is dropped.
void OrderedPool::workOn(Batch& batch) {
    batch.m_results.reserve(batch.m_items.size());
    for (auto const& item : batch.m_items) {
        auto result = resultFor(item);
        if (m_stop.stop_requested()) {
            return;
        }
        batch.m_results.push_back(std::move(result));
    }
}

// Delivers what is done at the front, unless another thread is doing so.
void OrderedPool::deliver(std::unique_lock<std::mutex>& lock) {
    if (m_isDelivering) {
        return;
    }
    m_isDelivering = true;
    while (!m_inOrder.empty() && m_inOrder.front()->m_isDone) {
        auto const batch = std::move(m_inOrder.front());
        m_inOrder.pop_front();
        m_bytes -= batch->m_bytes;
        bool const isWanted = !m_isStopped;
        lock.unlock();
        bool const isGoingOn = isWanted && handOn(*batch);
        lock.lock();
        bool const isWhole = batch->m_results.size() == batch->m_items.size();
        m_isStopped = m_isStopped || !isGoingOn || !isWhole;
        m_hasRoom.notify_one();
    }
    m_isDelivering = false;
}

bool OrderedPool::handOn(Batch const& batch) {
    try {
        return std::all_of(batch.m_results.begin(), batch.m_results.end(),
                           [](Hand const& hand) { return hand(); });
    } catch (...) {
        std::lock_guard const lock(m_mutex);
        m_thrown = std::current_exception();
        return false;
    }
}

std::optional<std::uint64_t> submitAll(OrderedPool& pool, Inputs& inputs,
                                       Interrupt const& interrupt) {
    std::uint64_t submitted = 0;
    try {
        for (InputItem item; interrupt.signalNumber() == 0 && inputs.next(item); ++submitted) {
            if (!pool.submit(std::move(item))) {
                return std::nullopt;
            }
        }
    } catch (Interrupted const&) {
        return std::nullopt;
    }
    return interrupt.signalNumber() == 0 ? std::optional(submitted) : std::nullopt;
}

} // namespace Quorvane
