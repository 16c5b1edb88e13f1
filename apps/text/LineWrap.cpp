// SPDX-License-Identifier: Apache-2.0
#include "apps/text/LineWrap.h"

#include "apps/text/Utf8.h"

#include <algorithm>

namespace Quorvane {

namespace {

constexpr std::size_t furtherIn = 2;

// Colours take no columns.
std::size_t s_columns(std::string_view text) {
    auto count = columns(text);
    for (std::size_t end = 0;;) {
        auto const start = text.find('\x1B', end);
        if (start == std::string_view::npos) {
            return count;
        }
        end = std::min(text.find('m', start), text.size() - 1) + 1;
        count -= end - start;
    }
}

// Where what follows a break begins.
std::size_t s_indentation(std::string_view line, std::size_t width) {
    auto const start = std::min(line.find_first_not_of(' '), line.size());
    auto const gap = line.rfind("  ");
    if (gap != std::string_view::npos && gap > start) {
        auto const column = s_columns(line.substr(0, line.find_first_not_of(' ', gap)));
        if (column <= width * 2 / 3) {
            return column;
        }
    }
    return std::min(start + furtherIn, width / 2);
}

std::string s_wrapped(std::string_view line, std::size_t width) {
    auto const indentation = s_indentation(line, width);
    std::string text;
    std::size_t taken = 0; // columns of the last line
    while (!line.empty()) {
        auto const wordStart = std::min(line.find_first_not_of(' '), line.size());
        auto const wordEnd = std::min(line.find(' ', wordStart), line.size());
        auto const wordWidth = s_columns(line.substr(wordStart, wordEnd - wordStart));
        if (taken > indentation && taken + wordStart + wordWidth > width) {
            text += '\n' + std::string(indentation, ' ');
            taken = indentation;
        } else {
            text += line.substr(0, wordStart);
            taken += wordStart;
        }
        text += line.substr(wordStart, wordEnd - wordStart);
        taken += wordWidth;
        line.remove_prefix(wordEnd);
    }
    return text;
}

} // namespace

std::string wrappedLines(std::string_view text, std::size_t width) {
    std::string lines;
    while (!text.empty()) {
        auto const end = std::min(text.find('\n'), text.size());
        auto const line = text.substr(0, end);
        lines += s_columns(line) > width ? s_wrapped(line, width) : line;
        lines += text.substr(end, 1);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

} // namespace Quorvane
