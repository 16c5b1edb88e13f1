// SPDX-License-Identifier: Apache-2.0
//
// How wide text becomes, about: only the browser that lays it out knows. Pure functions.
#pragma once

#include <string>
#include <string_view>

namespace Quorvane::Charts {

// In pixels, at the ordinary size of charts.
double textWidth(std::string_view text);

// The text, cut with an ellipsis where it is wider than `width`.
std::string shortened(std::string const& text, double width);

} // namespace Quorvane::Charts
