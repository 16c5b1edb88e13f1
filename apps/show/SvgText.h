// SPDX-License-Identifier: Apache-2.0
//
// Numbers and text in a picture of a rule set. Pure functions.
#pragma once

#include "apps/page/TextWidth.h"

#include <string>

namespace Quorvane::Show {

// With one digit after the point.
std::string svgNumber(double number);

// Escaped, without the characters that XML cannot hold.
std::string svgText(std::string text);

struct SvgLabel {
    double m_x;
    double m_y;
    std::string m_kind;
    std::string m_text;
    double m_room; // to the right
    double m_size = Page::drawnTextSize;
    std::string m_number = {}; // before the text, in bold
};

// Stays within its room in every font. A much longer text is cut; its tooltip has all of it.
std::string svgLabel(SvgLabel const& label);

} // namespace Quorvane::Show
