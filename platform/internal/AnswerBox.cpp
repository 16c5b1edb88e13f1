// SPDX-License-Identifier: Apache-2.0
#include "platform/internal/AnswerBox.h"

#include <utility>

namespace Quorvane::Dns {

void AnswerBox::put(std::size_t slot, Answer&& answer) noexcept {
    std::lock_guard<std::mutex> const lock(m_mutex);
    m_answers[slot] = std::move(answer);
    m_arrived.notify_one();
}

std::optional<AnswerBox::Arrival> AnswerBox::take(TimePoint deadline) {
    std::unique_lock<std::mutex> lock(m_mutex);
    std::optional<Arrival> arrival = takeArrived();
    while (!arrival && m_arrived.wait_until(lock, deadline) == std::cv_status::no_timeout) {
        arrival = takeArrived();
    }
    return arrival ? std::move(arrival) : takeArrived();
}

std::optional<AnswerBox::Arrival> AnswerBox::takeArrived() {
    for (std::size_t slot = 0; slot < slots; ++slot) {
        if (m_answers[slot]) {
            Arrival arrival{slot, std::move(*m_answers[slot])};
            m_answers[slot].reset();
            return arrival;
        }
    }
    return std::nullopt;
}

} // namespace Quorvane::Dns
