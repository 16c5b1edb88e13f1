// SPDX-License-Identifier: Apache-2.0
#include "rules/evaluate/Wilson.h"

#include <algorithm>
#include <cmath>

namespace Quorvane::Rules {

double Rate::value() const {
    return m_total == 0 ? 0.0 : static_cast<double>(m_hits) / static_cast<double>(m_total);
}

Interval wilsonInterval(Rate const& rate) {
    if (rate.m_total == 0) {
        return {};
    }
    constexpr double z = 1.959963984540054; // 97.5 % of the normal distribution lie below
    auto const n = static_cast<double>(rate.m_total);
    auto const p = rate.value();
    auto const middle = p + z * z / (2.0 * n);
    auto const spread = z * std::sqrt(p * (1.0 - p) / n + z * z / (4.0 * n * n));
    auto const scale = 1.0 + z * z / n;
    // At the ends the exact value is 0 or 1, which rounding must not miss.
    return {rate.m_hits == 0 ? 0.0 : std::max(0.0, (middle - spread) / scale),
            rate.m_hits == rate.m_total ? 1.0 : std::min(1.0, (middle + spread) / scale)};
}

} // namespace Quorvane::Rules
