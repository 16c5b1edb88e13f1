// SPDX-License-Identifier: Apache-2.0
//
// InputSize: how much there is to read, found out beside the work, for whoever shows progress.
// Safe to ask from many threads.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace Quorvane {

class InputSize {
  public:
    // Starts counting on a thread of its own.
    explicit InputSize(std::vector<std::string> paths);
    InputSize(InputSize const&) = delete;
    InputSize& operator=(InputSize const&) = delete;
    ~InputSize();

    // Bytes of all inputs on disk; empty while they are being counted, and when one of them is a
    // pipe, whose end nobody knows.
    std::optional<std::uint64_t> bytes() const;

  private:
    void count(std::vector<std::string> const& paths);

    std::atomic<bool> m_isWanted{true};
    std::atomic<bool> m_isKnown{false};
    std::atomic<std::uint64_t> m_bytes{0};
    std::thread m_thread;
};

} // namespace Quorvane
