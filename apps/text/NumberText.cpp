// SPDX-License-Identifier: Apache-2.0
#include "apps/text/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>

namespace Quorvane {

std::string numberText(double value, int digits) {
    std::array<char, 64> text{};
    auto const end = std::to_chars(text.data(), text.data() + text.size(), value,
                                   std::chars_format::general, digits)
                         .ptr;
    return {text.data(), end};
}

bool isShare(double number) {
    return number >= 0.0 && number <= 1.0;
}

std::string noShareText(double number) {
    return '(' + (std::isnan(number) ? "no number" : numberText(number)) + ')';
}

std::string spamText(double confidence) {
    return isShare(confidence) ? numberText(confidence) + " spam"
                               : "unknown share of spam " + noShareText(confidence);
}

std::string probabilityText(double probability) {
    if (!isShare(probability)) {
        return noShareText(probability);
    }
    auto const percent = probability * 100.0;
    if (percent > 0.0 && percent < 0.1) {
        return "<0.1 %";
    }
    if (percent < 100.0 && percent > 99.9) {
        return percent < 99.95 ? "99.9 %" : ">99.9 %";
    }
    bool const hasFraction = percent < 1.0 || percent > 90.0;
    auto const rounded = hasFraction ? std::round(percent * 10.0) / 10.0 : std::round(percent);
    return numberText(rounded) + " %";
}

std::string exactNumberText(double value) {
    std::array<char, 32> text{};
    auto const end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return {text.data(), end};
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

} // namespace Quorvane
