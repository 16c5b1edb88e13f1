// SPDX-License-Identifier: Apache-2.0
#include "apps/common/NumberText.h"

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

} // namespace Quorvane
