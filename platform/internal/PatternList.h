// SPDX-License-Identifier: Apache-2.0
//
// Reads a list of regular expressions for host names: one a line, "#" starts a comment, blanks
// around an expression and empty lines are skipped, a leading "!" makes a counter-pattern. What an
// expression means is not looked at here.
//
// The functions are pure and safe to call from any thread. Errors are Exceptions of category 3 with
// file and line.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane {

// Bytes of a list at most. Some thousand lines are well below it; a file that somebody named by
// mistake (a mailbox, a device) is well above.
constexpr std::size_t maxPatternText = std::size_t{1} << 20U;

// Expressions in a list at most, five times those of the largest lists that are known. When names
// are made up to fill the common automaton, each is tried by itself: that took 50 kB of
// memory for each, and 0.2 s a message, of 9,900 expressions.
constexpr std::size_t maxPatterns = 2'000;

struct Pattern {
    std::string m_expression;
    unsigned int m_line = 0; // in its file, from 1
};

struct PatternList {
    std::string m_sourceName;
    std::vector<Pattern> m_patterns;
    std::vector<Pattern> m_counterPatterns;
};

PatternList parsePatternList(std::string_view text, std::string const& sourceName);

// The text of the file `path`, byte for byte.
std::string readPatternFile(std::string const& path);

} // namespace Quorvane
