// SPDX-License-Identifier: Apache-2.0
#include "apps/common/NumberText.h"

#include <array>
#include <charconv>

namespace Quorvane {

std::string numberText(double value, int digits) {
    std::array<char, 64> text{};
    auto const end = std::to_chars(text.data(), text.data() + text.size(), value,
                                   std::chars_format::general, digits)
                         .ptr;
    return {text.data(), end};
}

} // namespace Quorvane
