// SPDX-License-Identifier: Apache-2.0
//
// The theme of all pages: theme.css, whose head lists the variables and classes to build upon.
#pragma once

#include <string_view>

namespace Quorvane::Page {

std::string_view theme();

} // namespace Quorvane::Page
