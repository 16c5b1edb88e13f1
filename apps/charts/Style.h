// SPDX-License-Identifier: Apache-2.0
//
// charts.css: what a page with charts puts after its theme.
#pragma once

#include <string_view>

namespace Quorvane::Charts {

std::string_view style();

} // namespace Quorvane::Charts
