// SPDX-License-Identifier: Apache-2.0
#include "rules/evaluate/FigureText.h"

#include <array>
#include <charconv>

namespace Quorvane::Rules {

namespace {

std::string s_interval(Rate const& rate) {
    auto const interval = wilsonInterval(rate);
    return fixedText(100.0 * interval.m_low, 2) + " to " + fixedText(100.0 * interval.m_high, 2);
}

} // namespace

std::string fixedText(double value, int digits) {
    std::array<char, 512> text{}; // the largest number has 309 digits before the point
    auto const end = std::to_chars(text.data(), text.data() + text.size(), value,
                                   std::chars_format::fixed, digits)
                         .ptr;
    return {text.data(), end};
}

std::string percentText(double share) {
    constexpr double small = 0.1;
    if (share == 0.0 || share == 1.0) {
        return share == 0.0 ? "0 %" : "100 %";
    }
    auto const percent = 100.0 * share;
    return fixedText(percent, percent < small ? 3 : 2) + " %";
}

std::string intervalText(Rate const& rate) {
    return s_interval(rate) + " %";
}

std::string rateText(Rate const& rate) {
    if (rate.m_total == 0) {
        return "none of 0";
    }
    return std::to_string(rate.m_hits) + " of " + std::to_string(rate.m_total) + " (" +
           percentText(rate.value()) + "; " + s_interval(rate) + ")";
}

} // namespace Quorvane::Rules
