// SPDX-License-Identifier: Apache-2.0
#include "apps/input/OrderedPool.h"

#include "apps/commandline/ProgramError.h"

#include <algorithm>
#include <new>
#include <system_error>
#include <utility>

namespace Quorvane {

namespace {

// At most.
constexpr std::size_t batchItems = 128;
constexpr std::size_t batchesPerThread = 4;
// Header sections that wait; one alone may be larger.
constexpr std::size_t maxWaitingBytes = std::size_t{64} << 20;
constexpr std::size_t batchBytes = std::size_t{1} << 20;
// Memory of a header section that is kept for the next one in its place.
constexpr std::size_t maxKeptBytes = std::size_t{8} << 10;

unsigned int s_threads(unsigned int threads) {
    return threads != 0 ? threads : std::max(1U, std::thread::hardware_concurrency());
}

// One more is being filled.
std::size_t s_batches(unsigned int threads) {
    return s_threads(threads) * batchesPerThread + 1;
}

} // namespace

std::size_t OrderedPool::places(unsigned int threads) {
    return s_batches(threads) * batchItems;
}

OrderedPool::OrderedPool(unsigned int threads, Roles roles, std::stop_token stop)
    : m_roles(std::move(roles)), m_threadCount(s_threads(threads)), m_batches(s_batches(threads)),
      m_stop(std::move(stop)), m_onStop(m_stop, [this] {
          // No thread may be between its look at the state and its wait.
          std::lock_guard const lock(m_mutex);
          wakeAll();
      }) {
    for (std::size_t i = 0; i < m_batches.size(); ++i) {
        m_batches[i].m_firstPlace = i * batchItems;
        m_batches[i].m_items.resize(batchItems);
        m_batches[i].m_thrown.resize(batchItems);
        m_free.push_back(&m_batches[i]);
    }
    startThreads();
}

// Where the system gives fewer threads than are wanted, these do the work.
void OrderedPool::startThreads() {
    std::lock_guard const lock(m_mutex);
    m_threads.reserve(m_threadCount);
    try {
        while (m_threads.size() < m_threadCount) {
            m_threads.emplace_back(&OrderedPool::run, this);
        }
    } catch (std::system_error const&) {
        if (m_threads.empty()) {
            throw;
        }
        m_threadCount = m_threads.size();
    }
}

OrderedPool::~OrderedPool() {
    close();
}

bool OrderedPool::submit(InputItem item) {
    std::unique_lock lock(m_mutex);
    submit(item, lock);
    return !isStopping();
}

bool OrderedPool::submit(std::vector<InputItem>& items) {
    std::unique_lock lock(m_mutex);
    for (auto& item : items) {
        submit(item, lock);
    }
    items.clear();
    return !isStopping();
}

void OrderedPool::submitThoseWithRoom(std::vector<InputItem>& items) {
    std::unique_lock lock(m_mutex);
    auto item = items.begin();
    for (; item != items.end() && (isStopping() || hasRoom()); ++item) {
        submit(*item, lock);
    }
    items.erase(items.begin(), item);
}

// REQUIRES, as all up to work but fillOpen: m_mutex is held.
void OrderedPool::submit(InputItem& item, std::unique_lock<std::mutex>& lock) {
    waitForRoom(lock);
    if (isStopping()) {
        return;
    }
    if (m_open == nullptr) {
        open();
    }
    addToOpen(item);
    if (isFull(*m_open)) {
        queueOpen();
    }
    m_hasWork.notify_one();
}

bool OrderedPool::hasRoom() const {
    return m_open != nullptr || m_inOrder.empty() || (!m_free.empty() && m_bytes < maxWaitingBytes);
}

// An open batch of the thread that reads is its own.
bool OrderedPool::hasWork() const {
    return !m_queue.empty() || (!m_roles.m_source && m_open != nullptr);
}

bool OrderedPool::mayRead() const {
    return m_roles.m_source && !m_isReading && !m_isClosed && !isStopping() && hasRoom();
}

void OrderedPool::waitForRoom(std::unique_lock<std::mutex>& lock) {
    m_hasRoom.wait(lock, [this] { return isStopping() || hasRoom(); });
}

void OrderedPool::open() {
    m_open = m_free.back();
    m_free.pop_back();
    m_open->m_wanted = m_wanted;
}

bool OrderedPool::isFull(Batch const& batch) {
    return batch.m_count >= batch.m_wanted || batch.m_bytes >= batchBytes;
}

// Leaves memory in `item` to be used again.
void OrderedPool::addToOpen(InputItem& item) {
    auto& place = m_open->m_items[m_open->m_count++];
    std::swap(place, item);
    m_open->m_bytes += place.m_headers.size() + (place.m_copy ? place.m_copy->cost() : 0);
}

void OrderedPool::queueOpen() {
    m_bytes += m_open->m_bytes;
    m_queue.push_back(m_open);
    m_inOrder.push_back(m_open);
    m_open = nullptr;
}

void OrderedPool::stop() {
    m_isStopped = true;
    wakeAll();
}

void OrderedPool::wakeAll() {
    m_hasRoom.notify_all();
    m_hasWork.notify_all();
}

void OrderedPool::finish() {
    if (m_roles.m_source) {
        join();
    } else {
        close();
    }
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
    join();
}

void OrderedPool::join() {
    for (auto& thread : m_threads) {
        thread.join();
    }
    m_threads.clear();
}

// Reads a batch for this thread and one more: another thread need not wait while this one, which
// the system may suspend, reads the next. What is thrown comes after the results for the messages
// before.
void OrderedPool::readBatches(std::unique_lock<std::mutex>& lock) {
    constexpr std::size_t readAhead = 2;
    m_isReading = true;
    while (m_queue.size() < readAhead && !m_isClosed && !isStopping() && hasRoom()) {
        open();
        lock.unlock();
        std::exception_ptr thrown;
        bool const isThere = fillOpen(thrown);
        lock.lock();
        if (!isThere) {
            m_isClosed = true;
            m_thrown = m_thrown ? m_thrown : thrown;
        }
        if (m_open->m_count != 0) {
            queueOpen();
            m_hasWork.notify_one();
        } else {
            m_free.push_back(std::exchange(m_open, nullptr));
        }
    }
    m_isReading = false;
    m_hasWork.notify_all();
}

// False at the end of the source, which may be something thrown.
bool OrderedPool::fillOpen(std::exception_ptr& thrown) {
    try {
        while (!isFull(*m_open)) {
            if (!m_roles.m_source(m_read, *this)) {
                return false;
            }
            addToOpen(m_read);
        }
        return true;
    } catch (...) {
        thrown = std::current_exception();
        return false;
    }
}

// On the thread that reads. Where there is no other one it works, too.
void OrderedPool::sourceWaits() {
    std::unique_lock lock(m_mutex);
    m_hasRoom.wait(lock, [this] { return isStopping() || !m_free.empty(); });
    if (m_open->m_count != 0 && !m_free.empty()) {
        queueOpen();
        open();
        m_hasWork.notify_one();
    }
    while (m_threadCount == 1) {
        auto* const batch = takeBatch();
        if (batch == nullptr) {
            break;
        }
        workOn(*batch, lock);
    }
}

// The batch to work on next. A thread that would have to wait takes the open one, full or not:
// input may come slowly. Null at the end.
OrderedPool::Batch* OrderedPool::nextBatch(std::unique_lock<std::mutex>& lock) {
    do {
        m_hasWork.wait(lock,
                       [this] { return hasWork() || m_isClosed || isStopping() || mayRead(); });
        if (!hasWork() && mayRead()) {
            readBatches(lock);
        }
    } while (!hasWork() && !m_isClosed && !isStopping());
    if (m_queue.empty() && hasWork()) {
        queueOpen();
    }
    return takeBatch();
}

OrderedPool::Batch* OrderedPool::takeBatch() {
    if (m_queue.empty() || m_stop.stop_requested()) {
        return nullptr;
    }
    auto* const batch = m_queue.front();
    m_queue.pop_front();
    return batch;
}

void OrderedPool::run() {
    try {
        std::unique_lock lock(m_mutex);
        work(lock);
        tellEnd(lock);
    } catch (...) { // no memory for the pool itself
        std::unique_lock lock(m_mutex);
        m_thrown = std::current_exception();
        stop();
        tellEnd(lock);
    }
}

void OrderedPool::work(std::unique_lock<std::mutex>& lock) {
    while (auto* const batch = nextBatch(lock)) {
        workOn(*batch, lock);
        tellEnd(lock);
    }
}

void OrderedPool::workOn(Batch& batch, std::unique_lock<std::mutex>& lock) {
    bool const isWanted = !m_isStopped;
    lock.unlock();
    auto const begin = std::chrono::steady_clock::now();
    if (isWanted) {
        workOn(batch);
    }
    auto const time = std::chrono::steady_clock::now() - begin;
    lock.lock();
    adaptBatches(batch.m_count, time);
    batch.m_isDone = true;
    deliver(lock);
}

void OrderedPool::adaptBatches(std::size_t count, std::chrono::nanoseconds time) {
    constexpr std::chrono::microseconds wantedTime(500);
    if (time * m_wanted > wantedTime * count) {
        m_wanted = std::max<std::size_t>(m_wanted / 2, 1);
    } else if (count == m_wanted) {
        m_wanted = std::min(m_wanted * 2, batchItems);
    }
}

// A result that the request to stop may have spoilt is dropped.
void OrderedPool::workOn(Batch& batch) {
    std::shared_lock memory(m_memory);
    for (std::size_t i = 0; i < batch.m_count; ++i) {
        if (!tryWorkOn(batch, i)) {
            memory.unlock();
            workAlone(batch, i);
            memory.lock();
        }
        if (m_stop.stop_requested()) {
            return;
        }
        ++batch.m_worked;
    }
}

// An exception for a message is delivered in its turn. False when the memory was too small.
bool OrderedPool::tryWorkOn(Batch& batch, std::size_t number) {
    auto& thrown = batch.m_thrown[number];
    try {
        thrown = nullptr;
        m_roles.m_work(batch.m_items[number], batch.m_firstPlace + number);
    } catch (std::bad_alloc const&) {
        thrown = std::current_exception();
        return false;
    } catch (...) {
        thrown = std::current_exception();
    }
    return true;
}

// Perhaps a message on another thread has taken the memory. One that does not fit alone is a
// problem like one that cannot be read.
void OrderedPool::workAlone(Batch& batch, std::size_t number) {
    std::lock_guard const lock(m_memory);
    if (!tryWorkOn(batch, number)) {
        auto& item = batch.m_items[number];
        item.m_problem = noMemoryFor(item.m_headers.size());
        item.m_exitStatus = ExitStatus::badData;
        item.m_headers = std::string();
        tryWorkOn(batch, number);
    }
}

// Delivers what is done at the front, unless another thread is doing so. REQUIRES, as the rest:
// m_mutex is held.
void OrderedPool::deliver(std::unique_lock<std::mutex>& lock) {
    if (m_isDelivering) {
        return;
    }
    m_isDelivering = true;
    while (!m_inOrder.empty() && m_inOrder.front()->m_isDone) {
        auto& batch = *m_inOrder.front();
        bool const isWanted = !m_isStopped;
        lock.unlock();
        bool const isGoingOn = isWanted && handOn(batch);
        lock.lock();
        if (!isGoingOn || batch.m_worked != batch.m_count) {
            stop();
        }
        m_inOrder.pop_front();
        recycle(batch);
    }
    m_isDelivering = false;
}

// Without the lock.
bool OrderedPool::handOn(Batch& batch) {
    try {
        for (std::size_t i = 0; i < batch.m_worked; ++i) {
            if (batch.m_thrown[i]) {
                std::rethrow_exception(batch.m_thrown[i]);
            }
            if (!m_roles.m_take(batch.m_items[i], batch.m_firstPlace + i)) {
                return false;
            }
        }
        if (m_roles.m_delivered) {
            m_roles.m_delivered(false, nullptr);
        }
        return true;
    } catch (...) {
        std::lock_guard const lock(m_mutex);
        m_thrown = std::current_exception();
        return false;
    }
}

void OrderedPool::recycle(Batch& batch) {
    for (std::size_t i = 0; i < batch.m_count; ++i) {
        auto& item = batch.m_items[i];
        item.m_copy.reset();
        if (item.m_headers.capacity() > maxKeptBytes) {
            item.m_headers = std::string();
        }
    }
    m_bytes -= batch.m_bytes;
    batch.m_count = batch.m_worked = batch.m_bytes = 0;
    batch.m_isDone = false;
    m_free.push_back(&batch);
    m_hasRoom.notify_one();
    if (m_roles.m_source) {
        m_hasWork.notify_one(); // room to read into
    }
}

bool OrderedPool::isAtEnd() const {
    bool const isAllDelivered = m_isClosed && !m_isReading && !hasWork() && m_inOrder.empty();
    return !m_isDelivering && (m_isStopped || isAllDelivered);
}

void OrderedPool::tellEnd(std::unique_lock<std::mutex>& lock) {
    if (m_roles.m_delivered && !m_isEndTold && isAtEnd()) {
        m_isEndTold = true;
        lock.unlock();
        m_roles.m_delivered(true, m_thrown);
        lock.lock();
    }
}

} // namespace Quorvane
