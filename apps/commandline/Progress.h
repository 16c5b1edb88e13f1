// SPDX-License-Identifier: Apache-2.0
//
// Progress: a status line on standard error during long work: what is done, rate, share, time left.
// On a terminal the line is updated in place; elsewhere each update is a new line. Draws on its own
// thread; safe to call from many threads.
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
    std::string m_what = "messages";
    std::optional<std::uint64_t> m_done;  // empty: the work is not counted
    std::optional<std::uint64_t> m_units; // that there are in all, if that is known by now
    double m_seconds = 0;
    std::uint64_t m_bytesDone = 0;
    std::optional<std::uint64_t> m_bytesTotal;
};

// "12,345 messages  4,115/s  41 %  4 s left"; without share and time if no total is known. The
// share is that of the units, or else that of the bytes.
std::string progressLine(WorkState const& state);

class Progress {
  public:
    using Total = std::function<std::optional<std::uint64_t>()>;

    // Draws nothing for the first two seconds. `total`: the number of bytes to work on, if known.
    explicit Progress(
        std::string program, Total total = [] { return std::nullopt; });
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;
    ~Progress();

    // The number of messages, or of other units, that are done.
    void update(std::uint64_t done) { m_done = static_cast<std::int64_t>(done); }
    // Other work begins: its unit, or its name if nothing is counted.
    void begin(std::string const& what);
    // All units are known: reading has come to its end.
    void expect(std::uint64_t units) { m_units = static_cast<std::int64_t>(units); }
    // The bytes that are done.
    void doneTo(std::uint64_t bytes) { m_bytes = bytes; }
    // Removes the line, so that something else can be written.
    void clear();

  private:
    void run();
    void draw();

    std::string m_program;
    Total m_total;
    bool m_isTerminal;
    std::atomic<std::int64_t> m_done{0};   // negative: nothing is counted
    std::atomic<std::int64_t> m_units{-1}; // negative: not known yet
    std::atomic<std::uint64_t> m_bytes{0};
    std::mutex m_mutex;
    std::string m_what = "messages";
    std::chrono::steady_clock::time_point m_start;
    std::condition_variable m_wake;
    bool m_isDrawn = false;
    bool m_isEnding = false;
    std::thread m_thread;
};

} // namespace Quorvane
