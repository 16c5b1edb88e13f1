// SPDX-License-Identifier: Apache-2.0
//
// Numbers for people. Pure functions; no locale has a say.
#pragma once

#include <cstdint>
#include <string>

namespace Quorvane {

// So many significant digits, without zeros at the end: "0.97", "12.35", "1e-05", "inf".
std::string numberText(double value, int digits = 4);

// 0..1. Rule files may hold any number where a share or probability is meant.
bool isShare(double number);

// What is no share, in brackets as it stands in the file: "(97)", "(inf)", "(no number)" for NaN.
std::string noShareText(double number);

// "0.97 spam", "unknown share of spam (97)".
std::string spamText(double confidence);

// The shortest text that reads back as the same number.
std::string exactNumberText(double value);

// "1,234,567"
std::string groupedText(std::uint64_t count);

} // namespace Quorvane
