// SPDX-License-Identifier: Apache-2.0
#include "rules/language/Diagnostic.h"

#include <algorithm>

namespace Quorvane::Rules {

namespace {

// A longer line would hide the message.
constexpr std::size_t longestLineShown = 160;

std::string_view s_line(std::string_view source, std::size_t number) {
    for (; number > 1; --number) {
        auto const end = source.find('\n');
        if (end == std::string_view::npos) {
            return {};
        }
        source.remove_prefix(end + 1);
    }
    return source.substr(0, std::min(source.find('\n'), longestLineShown));
}

std::string s_printable(std::string_view line) {
    std::string text(line);
    for (auto& c : text) {
        auto const isControl = static_cast<unsigned char>(c) < ' ' || c == '\x7f';
        c = c == '\t' ? ' ' : isControl ? '?' : c;
    }
    return text;
}

} // namespace

std::string showErrors(std::string_view file, std::string_view source,
                       std::vector<Diagnostic> const& errors) {
    std::string text;
    for (auto const& error : errors) {
        auto const [line, column] = error.m_position;
        text += std::string(file) + ':' + std::to_string(line) + ':' + std::to_string(column) +
                ": error: " + s_printable(error.m_text) + '\n';
        auto const shown = s_printable(s_line(source, line));
        if (!shown.empty() && column <= longestLineShown) {
            text += "  " + shown + "\n  " + std::string(column - 1, ' ') + "^\n";
        }
    }
    return text;
}

} // namespace Quorvane::Rules
