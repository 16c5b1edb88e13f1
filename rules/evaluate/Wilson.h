// SPDX-License-Identifier: Apache-2.0
//
// The Wilson score interval: the limits between which the true rate lies, given the messages
// counted. Unlike the textbook interval it stays right for rates near 0, such as those of false
// positives. Pure.
#pragma once

#include <cstdint>

namespace Quorvane::Rules {

struct Rate {
    std::uint64_t m_hits = 0;
    std::uint64_t m_total = 0;

    // 0 when there are no messages.
    double value() const;
};

struct Interval {
    double m_low = 0.0;
    double m_high = 1.0;
};

// 95 % confidence; 0 to 1 when there are no messages.
Interval wilsonInterval(Rate const& rate);

} // namespace Quorvane::Rules
