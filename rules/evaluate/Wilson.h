// SPDX-License-Identifier: Apache-2.0
//
// The Wilson score interval: between which limits a rate lies that was seen in so many messages.
// Unlike the textbook interval it stays right for rates near 0, where false positives live. Pure.
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

// 95 % confidence; everything from 0 to 1 when there are no messages.
Interval wilsonInterval(Rate const& rate);

} // namespace Quorvane::Rules
