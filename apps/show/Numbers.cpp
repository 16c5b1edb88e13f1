// SPDX-License-Identifier: Apache-2.0
#include "apps/show/Numbers.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace Quorvane::Show {

std::string percentText(double share) {
    std::array<char, 400> text{};
    auto const percent = 100.0 * share;
    // Close to certainty the digits that count stand behind the nines.
    bool const isNearAll = percent > 99.0 && percent < 100.0;
    std::snprintf(text.data(), text.size(), isNearAll ? "%.4g %%" : "%.3g %%", percent);
    return text.data();
}

std::string countText(std::int64_t count) {
    auto text = std::to_string(count);
    auto const first = std::size_t{count < 0};
    for (auto at = text.size(); at > first + 3; at -= 3) {
        text.insert(at - 3, ",");
    }
    return text;
}

} // namespace Quorvane::Show
