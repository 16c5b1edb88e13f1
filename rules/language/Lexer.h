// SPDX-License-Identifier: Apache-2.0
//
// The words of a rule text. Tokens point into the text, which must outlive them.
//
//   token     := word | number | string | character | "==" | "!=" | "->" | "{" | "}" | ":" | "(" |
//   ")" word      := letter or "_", then letters, digits, "_", "-", "/", "." number    := [ "+" |
//   "-" ] digit or "." or letter, then letters, digits, "." and, behind an
//                "e" of a number that is not hexadecimal, a sign
//   string    := '"' any characters but '"' and line end, '\"' allowed '"'
//   character := "'" one printable character "'"
//   comment   := "#" to the end of the line
#pragma once

#include "rules/language/Diagnostic.h"

#include <string_view>
#include <vector>

namespace Quorvane::Rules {

struct Token {
    enum class Kind { word, number, string, character, sign, end };

    Kind m_kind;
    // As it stands in the text; of strings and characters what is between the quotes.
    std::string_view m_text;
    Position m_position;
    // Statements end with their line.
    bool m_startsLine;

    bool is(std::string_view text) const {
        return (m_kind == Kind::word || m_kind == Kind::sign) && m_text == text;
    }
};

// The tokens of `text`, an `end` token last. What is no token goes to `errors` and is left out.
std::vector<Token> tokenize(std::string_view text, std::vector<Diagnostic>& errors);

} // namespace Quorvane::Rules
