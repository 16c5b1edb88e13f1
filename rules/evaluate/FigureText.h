// SPDX-License-Identifier: Apache-2.0
//
// Figures as people read them, the same in every display. Pure functions that do not depend on the
// locale.
#pragma once

#include "rules/evaluate/Wilson.h"

#include <string>

namespace Quorvane::Rules {

// With this many digits after the point.
std::string fixedText(double value, int digits);

// "84.90 %"; below 0.1 % with a third digit; "0 %" and "100 %" without digits.
std::string percentText(double share);

// "12 of 3456 (0.35 %; 0.20 to 0.61)", the interval in percent; "none of 0" without messages.
std::string rateText(Rate const& rate);

// "0.20 to 0.61 %": the interval alone.
std::string intervalText(Rate const& rate);

} // namespace Quorvane::Rules
