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

// The shortest text that reads back as the same number.
std::string exactNumberText(double value);

// "1,234,567"
std::string groupedText(std::uint64_t count);

} // namespace Quorvane
