// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/TextWidth.h"

#include <algorithm>

namespace Quorvane::Charts {

namespace {

constexpr double averageGlyph = 6.6;

// Whether a byte is not one of those that go on a UTF-8 character.
bool s_beginsGlyph(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

} // namespace

double textWidth(std::string_view text) {
    return averageGlyph *
           static_cast<double>(std::count_if(text.begin(), text.end(), s_beginsGlyph));
}

std::string shortened(std::string const& text, double width) {
    if (textWidth(text) <= width) {
        return text;
    }
    auto kept = std::string_view(text);
    while (!kept.empty() && textWidth(kept) + averageGlyph > width) {
        kept.remove_suffix(1);
    }
    return std::string(kept) + "\xE2\x80\xA6";
}

} // namespace Quorvane::Charts
