// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/TextWidth.h"

#include "apps/common/Utf8.h"

namespace Quorvane::Charts {

namespace {

constexpr double averageGlyph = 6.6;

} // namespace

double textWidth(std::string_view text) {
    return averageGlyph * static_cast<double>(columns(text));
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
