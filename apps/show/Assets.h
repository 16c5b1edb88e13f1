// SPDX-License-Identifier: Apache-2.0
//
// The styles and scripts of the drawings: files of page/, linked in.
#pragma once

#include <string_view>

namespace Quorvane::Show {

std::string_view svgStyle();

} // namespace Quorvane::Show
