// SPDX-License-Identifier: Apache-2.0
//
// Literals of the rule language: numbers and byte strings, to and from their text. What `...Text`
// writes, `parse...` reads back to the very bits.
#pragma once

#include "rules/model/RuleSet.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Quorvane::Rules {

// The words for the select modes, in the order of their numbers, which begin at 1.
inline constexpr std::array<std::string_view, 4> selectWords{"first", "last", "highest", "lowest"};

// A decimal integer of 32 bits with an optional sign.
std::optional<std::int32_t> parseInteger(std::string_view text);

// A number as people write it, or "inf". Not "nan": there are many, and bits(0x...) says which.
std::optional<double> parseNumber(std::string_view text);
// "0x" and up to 16 hexadecimal digits: the bits of a number.
std::optional<double> parseBits(std::string_view text);
// The shortest text that reads back to the same bits; bits(0x...) for a NaN.
std::string numberText(double number);

// Pairs of hexadecimal digits, blanks between pairs allowed.
std::optional<Bytes> parseHex(std::string_view text);
std::string hexText(std::string_view bytes);
template<std::size_t size>
std::string hexText(std::array<std::uint8_t, size> const& bytes) {
    return hexText({reinterpret_cast<char const*>(bytes.data()), size});
}

// The inside of a quoted string: \n, \r, \t, \\, \" and \xNN are escapes.
std::optional<Bytes> unescape(std::string_view text);
std::string quotedText(std::string_view bytes);

} // namespace Quorvane::Rules
