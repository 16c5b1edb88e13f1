// SPDX-License-Identifier: Apache-2.0
//
// Numbers as the drawings show them. Rule files may hold any number, NaN and infinities too: what
// is no share or count is told as unknown, with the number that stands in the file. Pure functions.
#pragma once

#include <cstdint>
#include <string>

namespace Quorvane::Show {

// A probability or share, 0..1, as "97 %", "0.15 %", "99.6 %": three significant digits at most;
// "unknown (97)".
std::string percentText(double share);

// "97 % spam", "unknown share of spam (97)".
std::string spamShareText(double confidence);

// A percentage, 0..100, as "14.28 %"; "unknown (-1)".
std::string supportText(double percentage);

// "1,234,567"; "unknown (-1)".
std::string countText(std::int64_t count);

} // namespace Quorvane::Show
