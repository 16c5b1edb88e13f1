// SPDX-License-Identifier: Apache-2.0
#include "apps/page/TextWidth.h"

#include "apps/text/NumberText.h"

#include <algorithm>

namespace Quorvane::Page {

namespace {

// Parts of the size.
constexpr double narrowGlyph = 0.3;
constexpr double ordinaryGlyph = 0.55;
constexpr double capitalGlyph = 0.68;
constexpr double wideGlyph = 0.86;
constexpr char ellipsis[] = "\xE2\x80\xA6";
// How much wider than common fonts the widest ones are: monospaced, or for readers with poor sight.
constexpr double wideFont = 1.6;

bool s_isOneOf(char c, std::string_view set) {
    return set.find(c) != std::string_view::npos;
}

// A byte of UTF-8 after the first of its character.
bool s_isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

double s_glyph(char c) {
    if (s_isContinuation(c)) {
        return 0.0;
    }
    if (s_isOneOf(c, " !'(),-./:;I[]fijlrt|")) {
        return narrowGlyph;
    }
    if (s_isOneOf(c, "%@MWmw")) {
        return wideGlyph;
    }
    return c >= 'A' && c <= 'Z' ? capitalGlyph : ordinaryGlyph;
}

} // namespace

double textWidth(std::string_view text, double size) {
    double width = 0.0;
    for (char const c : text) {
        width += s_glyph(c);
    }
    return size * width;
}

std::string shortened(std::string const& text, double width, double size) {
    if (textWidth(text, size) <= width) {
        return text;
    }
    auto kept = std::string_view(text);
    while (!kept.empty() && (s_isContinuation(text[kept.size()]) ||
                             textWidth(kept, size) + textWidth(ellipsis, size) > width)) {
        kept.remove_suffix(1);
    }
    return std::string(kept) + ellipsis;
}

std::string fittingAttributes(std::string_view text, double room, double size) {
    auto const width = textWidth(text, size);
    if (width * wideFont <= room) {
        return {};
    }
    return " textLength=\"" + numberText(std::min(width, room)) +
           "\" lengthAdjust=\"spacingAndGlyphs\"";
}

} // namespace Quorvane::Page
