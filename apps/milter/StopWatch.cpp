// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/StopWatch.h"

#include <chrono>
#include <utility>

// Whether libmilter has been told to stop: not 0. Its library exports the function, but its header
// does not declare it; nothing that the header declares says as much.
extern "C" int mi_stop();

namespace Quorvane::Milter {

namespace {

constexpr std::chrono::seconds lookEvery{1};
// The main loop looks every 5 seconds whether it has to end.
constexpr std::chrono::seconds returnTime{8};

} // namespace

StopWatch::StopWatch(std::function<void()> end)
    : m_end(std::move(end)), m_thread([this] { run(); }) {}

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
    if (!m_wake.wait_for(lock, returnTime, hasReturned)) {
        m_end();
    }
}

} // namespace Quorvane::Milter
