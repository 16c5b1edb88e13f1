// SPDX-License-Identifier: Apache-2.0
#include "python/ResultQueue.h"

#include <new>
#include <utility>

namespace Quorvane::Python {

void ResultList::add(Result& result) {
    if (m_size == m_results.size()) {
        m_results.emplace_back();
    }
    std::swap(m_results[m_size], result);
    ++m_size;
}

void ResultList::add(ResultList& results) {
    if (m_size == 0) {
        std::swap(*this, results);
        return;
    }
    for (std::size_t i = 0; i < results.size(); ++i) {
        add(results[i]);
    }
}

bool ResultQueue::add(Result& result) {
    try {
        m_added.add(result);
        return true;
    } catch (std::bad_alloc const&) {
        std::lock_guard const lock(m_mutex);
        m_isOutOfMemory = true;
        return false;
    }
}

void ResultQueue::publish() {
    std::unique_lock lock(m_mutex);
    m_hasRoom.wait(lock, [this] { return m_isStopped || m_results.size() < mostWaiting; });
    try {
        m_results.add(m_added);
    } catch (std::bad_alloc const&) {
        m_isOutOfMemory = true;
    }
    m_added.clear();
    m_hasResults.notify_one();
}

void ResultQueue::end(std::exception_ptr const& thrown) {
    publish();
    std::lock_guard const lock(m_mutex);
    m_thrown = thrown;
    m_isEnded = true;
    m_hasResults.notify_one();
}

void ResultQueue::stop() {
    std::lock_guard const lock(m_mutex);
    m_isStopped = true;
    m_hasRoom.notify_one();
}

bool ResultQueue::isReady() {
    return m_next < m_taken.size() || waitFor(std::chrono::milliseconds(0));
}

bool ResultQueue::waitFor(std::chrono::milliseconds time) {
    std::unique_lock lock(m_mutex);
    bool const isThere = m_hasResults.wait_for(
        lock, time, [this] { return m_results.size() != 0 || m_isEnded || m_isOutOfMemory; });
    if (isThere && m_results.size() == 0 && m_isOutOfMemory) {
        throw std::bad_alloc();
    }
    return isThere;
}

Result const* ResultQueue::take() {
    if (m_next == m_taken.size()) {
        m_taken.clear();
        m_next = 0;
        std::lock_guard const lock(m_mutex);
        std::swap(m_taken, m_results);
        m_hasRoom.notify_one();
        if (m_taken.size() == 0) {
            if (auto const thrown = std::exchange(m_thrown, nullptr)) {
                std::rethrow_exception(thrown);
            }
            return nullptr;
        }
    }
    return &m_taken[m_next++];
}

} // namespace Quorvane::Python
