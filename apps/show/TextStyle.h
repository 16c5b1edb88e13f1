// SPDX-License-Identifier: Apache-2.0
//
// How text is laid out: what the terminal can show, and lines broken to its width. Pure functions
// but for terminalStyle.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane::Show {

struct TextStyle {
    std::size_t m_width = 100;
    bool m_hasColour = false;
    // Guides of box-drawing characters; else of ASCII.
    bool m_isUtf8 = false;
};

// Of standard output: its width, and the character set of the locale. Anything that is not a
// terminal is 100 columns wide. `isStandardOutput`: false when a file is written instead.
TextStyle terminalStyle(bool isStandardOutput, bool hasColour);

// `text`, with blanks before it up to `width` columns.
std::string rightAligned(std::string const& text, std::size_t width);

// Lines of at most `width` columns, broken at blanks; a longer word is broken where it must.
// Bytes count, so other text than ASCII makes shorter lines. At least one line.
std::vector<std::string> wrapped(std::string_view text, std::size_t width);
// The same as one text; each line ends in a line feed.
std::string wrappedText(std::string_view text, TextStyle const& style);

// `text` in a colour of SGR parameters ("1", "38;5;208"), if there are colours.
std::string coloured(TextStyle const& style, std::string_view parameters, std::string const& text);

} // namespace Quorvane::Show
