// SPDX-License-Identifier: Apache-2.0
//
// Shades of a probability of spam, from blue (ham) over grey to orange (spam): told apart with any
// colour vision. Pure functions.
#pragma once

#include <cstddef>

namespace Quorvane::Show {

inline constexpr std::size_t shadeCount = 7;

// 0: sure of ham (up to 5 %); shadeCount - 1: sure of spam (from 95 % on); the middle one also for
// what is no number.
std::size_t shadeOf(double spamShare);

} // namespace Quorvane::Show
