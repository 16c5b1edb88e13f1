// SPDX-License-Identifier: Apache-2.0
//
// Snapshot: a process-wide slot for one immutable value that may be replaced at any time while many
// threads read it.
//
// Each thread keeps a form of its own of the value, `Local`, and reads it without a lock and
// without a write that another core sees: it compares a generation number and copies its Local. A
// counted pointer handed out to all threads would make every core wait for the one line that holds
// the count. A thread releases a superseded value when it next reads, or when it ends.
//
//     Snapshot<Settings>& s_slot() {
//         static auto* const slot = new Snapshot<Settings>(std::make_shared<Settings const>());
//         return *slot;
//     }
//     std::shared_ptr<Settings const> settings = s_slot().read();
//
// Make a slot that lives as long as the process, as above, and never destroy it: threads and static
// objects may still read while the program ends, and may do so safely. Slots of the same type work,
// but a thread that reads them in turn makes its Local anew each time.
//
// Errors: what making a Local throws passes through read(), which then works as before.
#pragma once

#include "platform/ForkBarrier.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>

namespace Quorvane {

// The Local for readers that want a shared pointer: the same value under a count of the thread's
// own, which holds one reference to the published one.
template<typename T>
std::shared_ptr<T const> snapshotUnderOwnCount(std::shared_ptr<T const> const& value) {
    return {value.get(), [value](T const*) {}};
}

// The slot. All operations may be called from many threads at once.
template<typename T, typename Local = std::shared_ptr<T const>>
class Snapshot {
  public:
    // Turns the published value into a thread's own form of it.
    using MakeLocal = Local (*)(std::shared_ptr<T const> const& value);

    // With a first value in force.
    explicit Snapshot(std::shared_ptr<T const> value, MakeLocal makeLocal = snapshotUnderOwnCount)
        : m_value(std::move(value)), m_makeLocal(makeLocal) {}
    Snapshot(Snapshot const&) = delete;
    Snapshot& operator=(Snapshot const&) = delete;
    ~Snapshot() = default;

    // Puts another value in force. Safe at any time from any thread.
    void publish(std::shared_ptr<T const> value) {
        {
            ForkBarrier const barrier;
            std::lock_guard<std::mutex> const lock(m_mutex);
            m_value.swap(value);
            m_generation.store(s_nextGeneration(), std::memory_order_release);
        }
        // The superseded value dies here, outside the lock, unless somebody still holds it.
    }

    // A copy of the calling thread's Local of the value in force.
    Local read() const {
        Cache* const cache = s_cache();
        if (cache == nullptr) {
            return makeEntry()->m_local;
        }
        auto const generation = m_generation.load(std::memory_order_acquire);
        if (*cache == nullptr || (*cache)->m_generation != generation) {
            auto fresh = makeEntry();
            // What the cache held dies last: its destructor may read this slot again.
            cache->swap(fresh);
            return (*cache)->m_local;
        }
        return (*cache)->m_local;
    }

  private:
    struct Entry {
        std::uint64_t m_generation;
        Local m_local;
    };
    using Cache = std::unique_ptr<Entry const>;

    // Unique among all slots of this type, so that a number identifies both slot and value.
    static std::uint64_t s_nextGeneration() {
        static std::atomic<std::uint64_t> last{0};
        return last.fetch_add(1, std::memory_order_relaxed) + 1;
    }

    // Null while the thread's last objects are destroyed, after its cache has gone.
    static Cache* s_cache() {
        static thread_local bool ended = false; // needs no destructor, so it can be read to the end
        struct Owner {
            Cache m_cache;
            ~Owner() { ended = true; }
        };
        if (ended) {
            return nullptr;
        }
        static thread_local Owner owner;
        return &owner.m_cache;
    }

    Cache makeEntry() const {
        std::shared_ptr<T const> value;
        std::uint64_t generation = 0;
        {
            ForkBarrier const barrier;
            std::lock_guard<std::mutex> const lock(m_mutex);
            value = m_value;
            generation = m_generation.load(std::memory_order_relaxed);
        }
        return Cache(new Entry{generation, m_makeLocal(value)});
    }

    mutable std::mutex m_mutex;
    std::shared_ptr<T const> m_value; // under m_mutex
    std::atomic<std::uint64_t> m_generation{s_nextGeneration()};
    MakeLocal const m_makeLocal;
};

} // namespace Quorvane
