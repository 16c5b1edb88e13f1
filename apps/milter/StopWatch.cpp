// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/StopWatch.h"

#include <chrono>
#include <utility>

// Whether libmilter has been told to stop: not 0. Its library exports the function, but its header
// does not declare it; nothing that the header declares says as much.
extern "C" int mi_stop();

namespace Quorvane::Milter {

namespace {

// libmilter takes the signals and tells nobody; this is how long an end may go unnoticed.
constexpr std::chrono::milliseconds lookEvery{100};
// The main loop looks every 5 seconds whether it has to end, if the wake-up call did not reach it.
constexpr std::chrono::seconds returnTime{8};

} // namespace

StopWatch::StopWatch(ListenPlace const& place, std::function<void()> end)
    : m_place(place), m_end(std::move(end)), m_thread([this] { run(); }) {}

StopWatch::~StopWatch() {
    {
        std::lock_guard const lock(m_mutex);
        m_hasReturned = true;
    }
    m_wake.notify_one();
    m_thread.join();
}

void StopWatch::run() {
    std::unique_lock lock(m_mutex);
    auto const hasReturned = [this] { return m_hasReturned; };
    while (mi_stop() == 0) {
        if (m_wake.wait_for(lock, lookEvery, hasReturned)) {
            return;
        }
    }
    // Not shutdown() of the socket: libmilter keeps its descriptor to itself, and sleeps for a
    // second after an accept() that fails.
    WakeUpCall const call(m_place);
    if (!m_wake.wait_for(lock, returnTime, hasReturned)) {
        m_end();
    }
}

} // namespace Quorvane::Milter
