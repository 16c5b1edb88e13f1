// SPDX-License-Identifier: Apache-2.0
//
// evaluation.css and evaluation.js, linked in.
#pragma once

#include <string_view>

namespace Quorvane::Reports {

std::string_view pageStyle();
std::string_view pageScript();

} // namespace Quorvane::Reports
