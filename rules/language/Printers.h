// SPDX-License-Identifier: Apache-2.0
//
// The halves of the decompiler.
#pragma once

#include "rules/model/RuleSet.h"

#include <array>
#include <bit>
#include <string>
#include <string_view>

namespace Quorvane::Rules {

// Equal to the last bit: 0 and -0 differ, a NaN equals itself.
template<typename T>
bool sameBits(T const& a, T const& b) {
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

std::string eliteText(EliteFile const& elite);
std::string treeText(RuleSet const& set);

// One line for each 32 bytes, at least one; WORD before each.
std::string hexLines(char const* word, std::string_view bytes);

} // namespace Quorvane::Rules
