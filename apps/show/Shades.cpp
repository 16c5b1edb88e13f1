// SPDX-License-Identifier: Apache-2.0
#include "apps/show/Shades.h"

#include <cmath>

namespace Quorvane::Show {

std::size_t shadeOf(double spamShare) {
    constexpr double sureOfHam = 0.05;
    constexpr double sureOfSpam = 0.95;
    constexpr auto between = shadeCount - 2;
    if (std::isnan(spamShare)) {
        return shadeCount / 2;
    }
    if (spamShare <= sureOfHam) {
        return 0;
    }
    if (spamShare >= sureOfSpam) {
        return shadeCount - 1;
    }
    auto const position = (spamShare - sureOfHam) / (sureOfSpam - sureOfHam);
    return 1 + static_cast<std::size_t>(position * static_cast<double>(between));
}

} // namespace Quorvane::Show
