// SPDX-License-Identifier: Apache-2.0
#include "apps/show/Numbers.h"

#include "apps/text/NumberText.h"

#include <cmath>

namespace Quorvane::Show {

std::string percentText(double share) {
    if (!isShare(share)) {
        return "unknown " + noShareText(share);
    }
    auto const percent = 100.0 * std::abs(share); // there is a zero with a minus sign
    // Close to certainty the digits that count stand behind the nines.
    bool const isNearAll = percent > 99.0 && percent < 100.0;
    return numberText(percent, isNearAll ? 4 : 3) + " %";
}

std::string spamShareText(double confidence) {
    return isShare(confidence) ? percentText(confidence) + " spam" : spamText(confidence);
}

std::string supportText(double percentage) {
    return isShare(percentage / 100.0) ? numberText(std::abs(percentage)) + " %"
                                       : "unknown " + noShareText(percentage);
}

std::string countText(std::int64_t count) {
    return count < 0 ? "unknown (" + std::to_string(count) + ')'
                     : groupedText(static_cast<std::uint64_t>(count));
}

} // namespace Quorvane::Show
