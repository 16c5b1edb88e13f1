// SPDX-License-Identifier: Apache-2.0
//
// InputSize: how much there is to read, counted in the background, for a progress display. Safe to
// ask from many threads.
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

    // Bytes of all inputs on disk; empty while they are being counted, and when one of them is a
    // pipe, whose size is unknown.
    std::optional<std::uint64_t> bytes() const;

  private:
    void count(std::stop_token const& stop, std::vector<std::string> const& paths);

    std::atomic<bool> m_isKnown{false};
    std::atomic<std::uint64_t> m_bytes{0};
    std::jthread m_thread; // ends before the others do
};

} // namespace Quorvane
