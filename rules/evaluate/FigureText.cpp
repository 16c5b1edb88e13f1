// SPDX-License-Identifier: Apache-2.0
#include "rules/evaluate/FigureText.h"

#include <iomanip>
#include <locale>
#include <sstream>

namespace Quorvane::Rules {

std::string fixedText(double value, int digits) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::fixed << std::setprecision(digits) << value;
    return text.str();
}

std::string percentText(double share) {
    constexpr double small = 0.1;
    if (share == 0.0 || share == 1.0) {
        return share == 0.0 ? "0 %" : "100 %";
    }
    auto const percent = 100.0 * share;
    return fixedText(percent, percent < small ? 3 : 2) + " %";
}

std::string groupedText(std::uint64_t count) {
    constexpr std::size_t group = 3;
    auto text = std::to_string(count);
    for (auto at = text.size(); at > group;) {
        at -= group;
        text.insert(at, 1, ',');
    }
    return text;
}

std::string intervalText(Rate const& rate) {
    auto const interval = wilsonInterval(rate);
    return fixedText(100.0 * interval.m_low, 2) + " to " + fixedText(100.0 * interval.m_high, 2) +
           " %";
}

std::string rateText(Rate const& rate) {
    if (rate.m_total == 0) {
        return "none of 0";
    }
    auto const interval = wilsonInterval(rate);
    return std::to_string(rate.m_hits) + " of " + std::to_string(rate.m_total) + " (" +
           percentText(rate.value()) + "; " + fixedText(100.0 * interval.m_low, 2) + " to " +
           fixedText(100.0 * interval.m_high, 2) + ")";
}

} // namespace Quorvane::Rules
