// SPDX-License-Identifier: Apache-2.0
#include "apps/input/OrderedPool.h"

#include <algorithm>
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

OrderedPool::OrderedPool(unsigned int threads, Work work)
    : m_work(std::move(work)), m_open(std::make_unique<Batch>()) {
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
    m_hasRoom.wait(lock, [this] {
        return m_isStopped || m_inOrder.empty() ||
               (m_inOrder.size() < m_maxBatches && m_bytes < maxWaitingBytes);
    });
    m_open->m_bytes += item.m_headers.size();
    m_open->m_items.push_back(std::move(item));
    if (m_open->m_items.size() >= batchItems || m_open->m_bytes >= batchBytes) {
        queueOpen();
    }
    m_hasWork.notify_one();
    return !m_isStopped;
}

// REQUIRES: m_mutex is held.
void OrderedPool::queueOpen() {
    m_bytes += m_open->m_bytes;
    m_queue.push_back(m_open.get());
    m_inOrder.push_back(std::move(m_open));
    m_open = std::make_unique<Batch>();
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
    m_hasWork.wait(lock,
                   [this] { return m_isClosed || !m_queue.empty() || !m_open->m_items.empty(); });
    if (m_queue.empty() && !m_open->m_items.empty()) {
        queueOpen();
    }
    if (m_queue.empty()) {
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
void OrderedPool::workOn(Batch& batch) {
    for (auto const& item : batch.m_items) {
        try {
            batch.m_results.push_back(m_work(item));
        } catch (...) {
            batch.m_results.emplace_back(
                [thrown = std::current_exception()]() -> bool { std::rethrow_exception(thrown); });
        }
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
        m_isStopped = m_isStopped || !isGoingOn;
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

} // namespace Quorvane
