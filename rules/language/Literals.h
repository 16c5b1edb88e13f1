// SPDX-License-Identifier: Apache-2.0
//
// Literals of the rule language: numbers and byte strings, to and from their text. What `...Text`
// writes, `parse...` reads back to the very bits.
#pragma once

#include "rules/model/RuleSet.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Quorvane::Rules {

// A decimal integer of 32 bits with an optional sign.
std::optional<std::int32_t> parseInteger(std::string_view text);

// A number as people write it, or "inf"; "nan" is none, since there are many: bits(0x...) says
// which.
std::optional<double> parseNumber(std::string_view text);
// "0x" and up to 16 hexadecimal digits: the bits of a number.
std::optional<double> parseBits(std::string_view text);
// The shortest text that reads back to the same bits; bits(0x...) for a NaN.
std::string numberText(double number);

// Pairs of hexadecimal digits, blanks between pairs allowed.
std::optional<Bytes> parseHex(std::string_view text);
std::string hexText(std::string_view bytes);

// The inside of a quoted string: \n, \r, \t, \\, \" and \xNN are escapes.
std::optional<Bytes> unescape(std::string_view text);
std::string quotedText(std::string_view bytes);

} // namespace Quorvane::Rules
