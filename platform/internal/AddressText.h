// SPDX-License-Identifier: Apache-2.0
//
// What happens to the text of an address header before and after GMime parses it. Pure functions.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Quorvane::internal {

// Only the first address counts, and it stands near the beginning: the longest path of RFC
// 5321 (256 bytes) after the longest line of RFC 5322 (998 bytes) leaves room to spare. GMime needs
// stack in proportion to the nesting of groups, so a long run of "a:" would crash the process, and
// time in proportion to the square of the number of commas.
inline constexpr std::size_t consideredBytes = 2048;
inline constexpr std::size_t consideredSeparators = 16;

inline bool isAddressSeparator(char c) {
    return c == ',' || c == ':' || c == ';';
}

struct AddressText {
    // For GMime; holds no NUL byte.
    std::string m_text;
    // Byte of the header and byte that stands for it in m_text.
    std::vector<std::pair<char, char>> m_standIns;

    // `part` of what GMime read in m_text, as it stands in the header.
    std::string original(std::string_view part) const;
};

// Cuts an overlong header after an address, and hides what GMime would decode. It turns the
// A-labels of a domain ("xn--...") into Unicode, while the rules compare domains as they stand in
// the message; and it decodes the display name, which nobody here reads, with whatever character
// set the sender names. Empty for text that holds no usable address: one with a NUL byte, one
// without a place to cut, or one that uses every byte that could hide another. Without `lenient`,
// the text is cut before the first address whose brackets are not in order. Addresses with more
// than one "@" are made unreadable (both: AddressSyntax.h).
std::optional<AddressText> prepareAddressText(std::string const& header, bool lenient);

// A local part without quotation marks and the backslashes and line breaks inside them.
std::string unquoted(std::string const& localPart);

} // namespace Quorvane::internal
