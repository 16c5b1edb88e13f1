// SPDX-License-Identifier: Apache-2.0
//
// AnswerBox: where the answers to the questions of one look-up arrive. Shared between the thread
// that waits and the pending deliveries, so that neither needs to know whether the other has
// given up. Each question has one slot and at most one pending answer.
#pragma once

#include "platform/Resolver.h"

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>

namespace Quorvane::Dns {

struct Answer {
    // "No such name" and "no such record" are answers too: they have no records.
    bool m_failed = false;
    ResolverMessage m_message;
    // The name that the asked one is an alias of, when the answer says no more than that.
    std::string m_alias;
};

class AnswerBox {
  public:
    static constexpr std::size_t slots = 3;
    using TimePoint = std::chrono::steady_clock::time_point;

    struct Arrival {
        std::size_t m_slot;
        Answer m_answer;
    };

    // REQUIRES: `slot` < slots. Wakes the thread that waits.
    void put(std::size_t slot, Answer&& answer) noexcept;

    // Waits for an answer and takes it out. Nothing when none came before the deadline; what is
    // there already is given even after it.
    std::optional<Arrival> take(TimePoint deadline);

  private:
    std::optional<Arrival> takeArrived();

    std::mutex m_mutex;
    std::condition_variable m_arrived;
    std::array<std::optional<Answer>, slots> m_answers;
};

} // namespace Quorvane::Dns
