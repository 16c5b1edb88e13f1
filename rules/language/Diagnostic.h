// SPDX-License-Identifier: Apache-2.0
//
// A place in a rule text, and an error at it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane::Rules {

// Both count from 1; the column counts characters. Line 0: no place.
struct Position {
    std::size_t m_line = 0;
    std::size_t m_column = 0;
};

struct Diagnostic {
    Position m_position;
    // What is wrong and what to do about it, one sentence or two.
    std::string m_text;
};

// Further errors of a text are not worth reading.
inline constexpr std::size_t maxErrors = 20;

// "FILE:LINE:COLUMN: error: TEXT", the line of the source and a mark below the place, for each.
// Control characters of the source are shown as '?', where a text quotes them, too.
std::string showErrors(std::string_view file, std::string_view source,
                       std::vector<Diagnostic> const& errors);

} // namespace Quorvane::Rules
