// SPDX-License-Identifier: Apache-2.0
//
// Progress: one line on standard error while work is long: messages, rate, share done, time left.
// On a terminal the line is drawn over itself; elsewhere each is a line of its own. It draws on a
// thread of its own; safe to call from many threads.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace Quorvane {

// Where the work stands.
struct WorkState {
    std::uint64_t m_messages = 0;
    double m_seconds = 0;
    std::uint64_t m_bytesRead = 0;
    std::optional<std::uint64_t> m_bytesTotal;
};

// "12,345 messages  4,115/s  41 %  4 s left"; without share and time when the total is not known.
std::string progressLine(WorkState const& state);

class Progress {
  public:
    using Write = std::function<void(std::string const&)>;
    using Total = std::function<std::optional<std::uint64_t>()>;

    // Draws nothing for the first two seconds.
    Progress(Write write, Total total, bool isTerminal);
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;
    ~Progress();

    void readTo(std::uint64_t bytes) { m_bytes = bytes; }
    void judgedOne() { ++m_messages; }
    // Takes the line away, so that something else can be written.
    void clear();

  private:
    void run();
    void draw();

    Write m_write;
    Total m_total;
    bool m_isTerminal;
    std::chrono::steady_clock::time_point m_start;
    std::atomic<std::uint64_t> m_messages{0};
    std::atomic<std::uint64_t> m_bytes{0};
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_isDrawn = false;
    bool m_isEnding = false;
    std::thread m_thread;
};

} // namespace Quorvane
