// SPDX-License-Identifier: Apache-2.0
//
// An estimate of how wide text in a drawing becomes: only the browser knows, since fonts differ.
// Text that could become too wide is therefore given a width, which browsers apply with any font.
// Sizes and widths are pixels. Pure functions.
#pragma once

#include <string>
#include <string_view>

namespace Quorvane::Page {

// The ordinary size of text in drawings.
inline constexpr double drawnTextSize = 12.0;

// In a common sans-serif font.
double textWidth(std::string_view text, double size = drawnTextSize);

// The text, cut with an ellipsis where it is wider than `width`.
std::string shortened(std::string const& text, double width, double size = drawnTextSize);

// The attributes of an SVG text, each with a blank before it, that keep it within `room`; empty
// when it fits there in wide fonts, too.
std::string fittingAttributes(std::string_view text, double room, double size = drawnTextSize);

} // namespace Quorvane::Page
