// SPDX-License-Identifier: Apache-2.0
//
// Parts of an address header in which no byte means what it means elsewhere: quoted text, literals
// and comments (RFC 5322 sections 3.2 and 3.4). Pure functions.
#pragma once

#include <cstddef>
#include <string_view>

namespace Quorvane::internal {

// Where `text` goes on after the part that the byte before `position` opened and `end` closes, or
// npos when nothing closes it. A backslash takes away the meaning of the byte after it.
inline std::size_t afterSpan(std::string_view text, std::size_t position, char end) {
    while (position < text.size()) {
        char const c = text[position++];
        if (c == end) {
            return position;
        }
        position += c == '\\' ? 1U : 0U;
    }
    return std::string_view::npos;
}

// The same for a comment, in which comments nest.
inline std::size_t afterComment(std::string_view text, std::size_t position) {
    for (int depth = 1; position < text.size();) {
        char const c = text[position++];
        position += c == '\\' ? 1U : 0U;
        depth += c == '(' ? 1 : c == ')' ? -1 : 0;
        if (depth == 0) {
            return position;
        }
    }
    return std::string_view::npos;
}

} // namespace Quorvane::internal
