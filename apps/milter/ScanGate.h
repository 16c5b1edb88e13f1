// SPDX-License-Identifier: Apache-2.0
//
// ScanGate: counts what is under way, lets no more in than a limit, and waits for the end of it.
// Any thread.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>

namespace Quorvane::Milter {

class ScanGate {
  public:
    // One that is under way, until the object ends.
    class Pass {
      public:
        // `gate` null: it was not let in.
        explicit Pass(ScanGate* gate) : m_gate(gate) {}
        Pass(Pass const&) = delete;
        Pass& operator=(Pass const&) = delete;
        ~Pass() {
            if (m_gate != nullptr) {
                m_gate->leave();
            }
        }
        bool isIn() const { return m_gate != nullptr; }

      private:
        ScanGate* m_gate;
    };

    Pass enter(std::size_t limit) {
        std::lock_guard const lock(m_mutex);
        if (m_count >= limit) {
            return Pass(nullptr);
        }
        ++m_count;
        return Pass(this);
    }

    // False when some are still under way after that time.
    bool waitUntilEmpty(std::chrono::milliseconds time) {
        std::unique_lock lock(m_mutex);
        return m_emptied.wait_for(lock, time, [this] { return m_count == 0; });
    }

  private:
    void leave() {
        std::lock_guard const lock(m_mutex);
        if (--m_count == 0) {
            m_emptied.notify_all();
        }
    }

    std::mutex m_mutex; // guards m_count
    std::condition_variable m_emptied;
    std::size_t m_count = 0;
};

} // namespace Quorvane::Milter
