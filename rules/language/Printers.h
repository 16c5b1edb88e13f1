// SPDX-License-Identifier: Apache-2.0
//
// The halves of the decompiler.
#pragma once

#include "rules/language/Literals.h"
#include "rules/language/NamePrinter.h"
#include "rules/model/RuleSet.h"

#include <array>
#include <bit>
#include <cstdint>
#include <string>
#include <string_view>

namespace Quorvane::Rules {

// Equal to the last bit: 0 and -0 differ, a NaN equals itself.
// Takes copies: no reference may be bound to a field of a packed record.
template<typename T>
bool sameBits(T a, T b) {
    using Bits = std::array<char, sizeof(T)>;
    return std::bit_cast<Bits>(a) == std::bit_cast<Bits>(b);
}

// Appends " WORD VALUE" unless the value is the default.
template<typename T>
void printUnless(std::string& text, char const* word, T value, T usual) {
    if (value != usual) {
        text += std::string(" ") + word + ' ' + std::to_string(value);
    }
}

// The same for bytes, which are usually zero.
template<std::size_t size>
void printUnlessZero(std::string& text, char const* word,
                     std::array<std::uint8_t, size> const& bytes) {
    if (bytes != std::array<std::uint8_t, size>{}) {
        text += std::string(" ") + word + " \"" + hexText(bytes) + '"';
    }
}

inline constexpr std::size_t indentWidth = 4;

std::string eliteText(EliteFile const& elite, NamePrinter& names);
std::string treeText(RuleSet const& set, NamePrinter& names);

// One line for each 32 bytes, at least one, each with `word` before the bytes.
std::string hexLines(char const* word, std::string_view bytes);

} // namespace Quorvane::Rules
