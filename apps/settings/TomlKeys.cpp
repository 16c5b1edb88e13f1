// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/TomlKeys.h"

#include <algorithm>

namespace Quorvane {

namespace {

std::size_t s_orEnd(std::size_t found, std::string_view text) {
    return std::min(found, text.size());
}

// The end of a string that closes with `quotes`, from `at` after its opening ones.
//
//   string := """ { any | "\" any } """ [ " [ " ] ]  |  " { any | "\" any } "   in one line
//           | ''' { any } ''' [ ' [ ' ] ]            |  ' { any } '             in one line
std::size_t s_stringEnd(std::string_view text, std::size_t at, std::string_view quotes) {
    bool const hasLines = quotes.size() > 1;
    while (at < text.size() && text.substr(at, quotes.size()) != quotes) {
        if (text[at] == '\n' && !hasLines) {
            return at;
        }
        at += text[at] == '\\' && quotes.front() == '"' ? 2 : 1;
    }
    at += quotes.size();
    for (int more = 0; hasLines && more < 2 && at < text.size() && text[at] == quotes.front();
         ++more) {
        ++at; // two quotes before the closing ones belong to the text
    }
    return s_orEnd(at, text);
}

// The end of the string or comment that begins at `at`; `at` itself when none does.
std::size_t s_skipped(std::string_view text, std::size_t at) {
    auto const c = text[at];
    if (c == '#') {
        return s_orEnd(text.find('\n', at), text);
    }
    if (c != '"' && c != '\'') {
        return at;
    }
    auto const quotes = text.substr(at, 3);
    bool const isTriple = quotes == R"(""")" || quotes == "'''";
    auto const closing = quotes.substr(0, isTriple ? 3 : 1);
    return s_stringEnd(text, at + closing.size(), closing);
}

} // namespace

std::optional<std::size_t> findLongKey(std::string_view text) {
    std::size_t parts = 1;
    for (std::size_t at = 0; at < text.size();) {
        auto const end = s_skipped(text, at);
        if (end != at) {
            at = end;
            continue;
        }
        auto const c = text[at];
        if (c == '.' && ++parts > maxKeyParts) {
            return at;
        }
        if (std::string_view("=,{[\n").find(c) != std::string_view::npos) {
            parts = 1;
        }
        ++at;
    }
    return std::nullopt;
}

} // namespace Quorvane
