// SPDX-License-Identifier: Apache-2.0
//
// Numbers for people. Pure functions, independent of the locale.
#pragma once

#include <cstdint>
#include <string>

namespace Quorvane {

// With this many significant digits, without zeros at the end: "0.97", "12.35", "1e-05", "inf".
std::string numberText(double value, int digits = 4);

// Whether it is in 0..1. Rule files may hold any number in place of a share or probability.
bool isShare(double number);

// A number that is not a share, in parentheses: "(97)", "(inf)", "(no number)" for NaN.
std::string noShareText(double number);

// "0.97 spam", "unknown share of spam (97)".
std::string spamText(double confidence);

// A probability in per cent, "2 %", "56 %", "99.9 %": with a digit after the point where it is near
// 0 or 1, and never as 0 or 100 % unless it is. A number that is no share is shown in parentheses.
std::string probabilityText(double probability);

// The shortest text that reads back as the same number.
std::string exactNumberText(double value);

// "1,234,567"
std::string groupedText(std::uint64_t count);

} // namespace Quorvane
