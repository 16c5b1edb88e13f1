// SPDX-License-Identifier: Apache-2.0
//
// Checks of an address header that GMime does not make, and the parts of a header that they skip:
// quoted text, literals and comments (RFC 5322 sections 3.2 and 3.4), in which no byte means what
// it means elsewhere. Pure functions.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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

// Doubles the first "@" of each address in `text` that has a second one outside quoted text and
// comments, and of each display name and route that has; GMime then finds no address there. Without
// this it reads "a@b@c.example" as "a@b" and ignores the rest, so that the sender would choose
// which domain is seen here and which one elsewhere. An address ends at a separator or an angle
// bracket, or where a blank and another word follow its domain.
void spoilDoubleAts(std::string& text);

// Where in `text` comments begin that follow a literal and that nothing closes; the last one first.
// GMime leaks what it has read of an address when it meets one. It may meet one in what we take for
// quoted text, because it skips to the next comma after an error; so quotation marks do not count.
std::vector<std::size_t> openCommentsAfterLiterals(std::string_view text);

struct WellBracketed {
    // Length of the longest run of whole addresses from the beginning of a text in which quotation
    // marks, comments, literals and angle brackets are closed, a literal follows "@", each address
    // has at most one pair of angle brackets with no "@" in front of it, and separators stand
    // between the brackets in a route only.
    std::size_t m_length = 0;
    // Where in that run angle brackets stand in quoted text, comments and literals, and commas in
    // those within angle brackets, in order.
    std::vector<std::size_t> m_plainMarks;
    // Where routes begin and end; some may lie behind that run.
    std::vector<std::pair<std::size_t, std::size_t>> m_routes;
};

// For headers that are read strictly: GMime rejects a stray bracket too, but leaks the memory of
// the address that it was reading. After an error it goes on behind the next comma, wherever that
// stands; without the plain marks and the routes it finds no stray bracket then.
WellBracketed wellBracketed(std::string_view text);

} // namespace Quorvane::internal
