// SPDX-License-Identifier: Apache-2.0
#include "platform/ForkBarrier.h"

#include <boost/intrusive/list.hpp>
#include <mutex>
#include <pthread.h>

namespace Quorvane {

namespace {

namespace intrusive = boost::intrusive;

// What a thread holds while it has a barrier. It is part of the thread's own memory.
struct Station : intrusive::list_base_hook<intrusive::link_mode<intrusive::auto_unlink>> {
    std::mutex m_mutex;
};

using Stations = intrusive::list<Station, intrusive::constant_time_size<false>>;

struct Registry {
    std::mutex m_mutex;
    Stations m_stations; // under m_mutex
    // For threads whose own memory has ended.
    Station m_late;
};

// Never destroyed: threads may scan while the process ends.
Registry& s_registry() {
    static auto* const registry = new Registry;
    return *registry;
}

// These need no destructor, so they can be read until the thread is gone. Every barrier needs the
// first two: this way of access costs one instruction.
__attribute__((tls_model("initial-exec"))) constinit thread_local unsigned int s_depth = 0;
__attribute__((tls_model("initial-exec"))) constinit thread_local Station* s_held = nullptr;
thread_local Station* s_own = nullptr;
thread_local bool s_hasEnded = false;

class OwnStation {
  public:
    OwnStation() {
        std::lock_guard const lock(s_registry().m_mutex);
        s_registry().m_stations.push_back(m_station);
        s_own = &m_station;
    }
    OwnStation(OwnStation const&) = delete;
    OwnStation& operator=(OwnStation const&) = delete;
    ~OwnStation() {
        std::lock_guard const lock(s_registry().m_mutex);
        m_station.unlink();
        s_own = nullptr;
        s_hasEnded = true;
    }

    Station m_station;
};

Station& s_station() {
    if (s_hasEnded) {
        return s_registry().m_late;
    }
    static thread_local OwnStation own;
    return own.m_station;
}

template<typename Action>
void s_forAllOthers(Action action) {
    auto& registry = s_registry();
    for (auto& station : registry.m_stations) {
        if (&station != s_held) {
            action(station.m_mutex);
        }
    }
    if (&registry.m_late != s_held) {
        action(registry.m_late.m_mutex);
    }
}

void s_beforeFork() {
    s_registry().m_mutex.lock();
    s_forAllOthers([](std::mutex& mutex) { mutex.lock(); });
}

void s_afterFork() {
    s_forAllOthers([](std::mutex& mutex) { mutex.unlock(); });
    s_registry().m_mutex.unlock();
}

// The other threads are not in the child, and their memory may be used again.
void s_afterForkInChild() {
    auto& registry = s_registry();
    s_forAllOthers([](std::mutex& mutex) { mutex.unlock(); });
    registry.m_stations.remove_if([](Station const& station) { return &station != s_own; });
    registry.m_mutex.unlock();
}

// Before main, so before the first fork.
[[maybe_unused]] int const s_isRegistered =
    pthread_atfork(s_beforeFork, s_afterFork, s_afterForkInChild);

} // namespace

ForkBarrier::ForkBarrier() noexcept {
    if (s_depth++ == 0) {
        s_held = &s_station();
        s_held->m_mutex.lock();
    }
}

ForkBarrier::~ForkBarrier() {
    if (--s_depth == 0) {
        s_held->m_mutex.unlock();
        s_held = nullptr;
    }
}

} // namespace Quorvane
