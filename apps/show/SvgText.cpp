// SPDX-License-Identifier: Apache-2.0
#include "apps/show/SvgText.h"

#include "apps/page/Escape.h"
#include "rules/evaluate/FigureText.h"

namespace Quorvane::Show {

namespace {

// A text that would be wider is squeezed down to this part of its width before it is cut.
constexpr double mostSqueezed = 0.8;

} // namespace

std::string svgNumber(double number) {
    return Rules::fixedText(number, 1);
}

// U+FFFE and U+FFFF are characters that XML cannot hold.
std::string svgText(std::string text) {
    for (auto const* const last : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
        for (auto at = text.find(last); at != std::string::npos; at = text.find(last)) {
            text.replace(at, 3, "?");
        }
    }
    return Page::text(text);
}

std::string svgLabel(SvgLabel const& label) {
    auto const before = label.m_number.empty() ? std::string() : label.m_number + ' ';
    auto const text = before + label.m_text;
    auto const shown = Page::shortened(text, label.m_room / mostSqueezed, label.m_size);
    return "<text x=\"" + svgNumber(label.m_x) + "\" y=\"" + svgNumber(label.m_y) + '"' +
           (label.m_kind.empty() ? "" : " class=\"" + label.m_kind + '"') +
           Page::fittingAttributes(shown, label.m_room, label.m_size) + '>' +
           (shown == text ? "" : "<title>" + svgText(text) + "</title>") +
           (before.empty() ? "" : "<tspan class=\"number\">" + label.m_number + "</tspan> ") +
           svgText(shown.substr(before.size())) + "</text>\n";
}

} // namespace Quorvane::Show
