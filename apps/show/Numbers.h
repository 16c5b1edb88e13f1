// SPDX-License-Identifier: Apache-2.0
//
// Numbers as the drawings show them. Rule files may hold any number, NaN and infinities too. Pure
// functions.
#pragma once

#include <cstdint>
#include <string>

namespace Quorvane::Show {

// A probability or share, 0..1, as "97 %", "0.15 %", "99.6 %": three significant digits at most.
std::string percentText(double share);

// "1,234,567".
std::string countText(std::int64_t count);

} // namespace Quorvane::Show
