// SPDX-License-Identifier: Apache-2.0
//
// SteadyScans: threads that post one message over and over and look at each answer, from the
// constructor on until stop. What they say of answers is said of whole rule sets: see markOf.
#pragma once

#include "DeepHeaderScanner.h"
#include "support/Message.h"

#include <atomic>
#include <cmath>
#include <cstdint>
#include <thread>
#include <vector>

namespace Quorvane::Testing {

// The message of all scans: one public hop, 192.0.2.7, without a reverse name.
inline DeepHeaderAnswer scanOnce() {
    Message message(received("a.example", "unknown", "192.0.2.7", "c.example"));
    message.m_settings.spamThreshold = 0.9;
    auto query = message.query();
    return DeepHeaderScanner().postQuery(query);
}

// Sets of rules are told apart by the confidence that they give: set `number` gives its mark.
inline double markOf(int number) {
    return 0.5 + number / 1000.0;
}
inline int numberIn(DeepHeaderAnswer const& answer) {
    return static_cast<int>(std::lround((answer.confidenceDegree() - 0.5) * 1000.0));
}

class SteadyScans {
  public:
    using Check = bool (*)(DeepHeaderAnswer const&);

    SteadyScans(int threads, Check isRight) {
        for (int i = 0; i < threads; ++i) {
            m_threads.emplace_back([this, isRight] {
                while (!m_isDone) {
                    m_wrong += isRight(scanOnce()) ? 0 : 1;
                    ++m_scanned;
                }
            });
        }
    }
    SteadyScans(SteadyScans const&) = delete;
    SteadyScans& operator=(SteadyScans const&) = delete;
    ~SteadyScans() { stop(); }

    std::uint64_t scanned() const { return m_scanned; }

    // How many answers were not right.
    std::uint64_t stop() {
        m_isDone = true;
        for (auto& thread : m_threads) {
            thread.join();
        }
        m_threads.clear();
        return m_wrong;
    }

  private:
    std::atomic<bool> m_isDone{false};
    std::atomic<std::uint64_t> m_wrong{0};
    std::atomic<std::uint64_t> m_scanned{0};
    std::vector<std::thread> m_threads;
};

} // namespace Quorvane::Testing
