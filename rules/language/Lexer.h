// SPDX-License-Identifier: Apache-2.0
//
// The words of a rule text. Tokens point into the text, which must outlive them.
//
// clang-format off
//   text          := { blank | comment | token }
//   blank         := " " | tab | carriage return | line end
//   comment       := "#" up to the end of the line
//   token         := word | number | string | character | sign
//   word          := letter { letter | digit | "-" | "/" | "." }
//   number        := ( digit | "." ) number-end
//                  | ( "+" | "-" ) ( digit | "." | letter ) number-end
//   number-end    := { letter | digit | "." | exponent-sign }
//   exponent-sign := "+" or "-" after an "e" or "E"; not in a number that starts with "0x"
//   string        := '"' { "\" any character | any character but '"' and "\" } '"'; in one line
//   character     := "'" one printable ASCII character "'"
//   sign          := "==" | "!=" | "->" | "{" | "}" | ":" | "(" | ")"
//   letter        := "a".."z" | "A".."Z" | "_"
//   digit         := "0".."9"
// clang-format on
#pragma once

#include "rules/language/Diagnostic.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace Quorvane::Rules {

struct Token {
    enum class Kind { word, number, string, character, sign, end };

    Kind m_kind;
    // As in the text; of strings and characters what is between the quotes.
    std::string_view m_text;
    Position m_position;
    // Statements end with their line.
    bool m_startsLine;

    bool is(std::string_view text) const {
        return (m_kind == Kind::word || m_kind == Kind::sign) && m_text == text;
    }
};

// Twice what the largest rule set needs, 5,001 elite rules of 100 conditions. A token takes more
// memory than its text.
inline constexpr std::size_t maxTokens = 4'000'000;

// The tokens of `text`, an `end` token last. What is not a token is reported in `errors`; the rest
// of the text is left out after maxErrors of them, and after maxTokens. Time is linear in the
// length of the text.
std::vector<Token> tokenize(std::string_view text, std::vector<Diagnostic>& errors);

} // namespace Quorvane::Rules
