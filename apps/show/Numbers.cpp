// SPDX-License-Identifier: Apache-2.0
#include "apps/show/Numbers.h"

#include "apps/common/NumberText.h"
#include "rules/evaluate/FigureText.h"

namespace Quorvane::Show {

std::string percentText(double share) {
    auto const percent = 100.0 * share;
    // Close to certainty the digits that count stand behind the nines.
    bool const isNearAll = percent > 99.0 && percent < 100.0;
    return numberText(percent, isNearAll ? 4 : 3) + " %";
}

std::string countText(std::int64_t count) {
    auto const bits = static_cast<std::uint64_t>(count);
    return count < 0 ? '-' + Rules::groupedText(-bits) : Rules::groupedText(bits);
}

} // namespace Quorvane::Show
