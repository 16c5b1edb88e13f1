// SPDX-License-Identifier: Apache-2.0
//
// The parser's cursor over the tokens of a rule text, and the terminals of the grammar. Each error
// is recorded once, with its place. A statement that cannot continue throws StatementFailed; the
// loop over statements catches it, so one run reports many errors.
#pragma once

#include "rules/language/Lexer.h"
#include "rules/model/RuleSet.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane::Rules {

struct StatementFailed {};
// Too many errors: what follows would only repeat them.
struct TextFailed {};

class TokenReader {
  public:
    TokenReader(std::vector<Token> tokens, std::vector<Diagnostic>& errors)
        : m_tokens(std::move(tokens)), m_errors(errors) {}

    Token const& peek() const { return m_tokens[m_at]; }
    bool atEnd() const { return peek().m_kind == Token::Kind::end; }
    // Whether the current statement continues: the next token is on its line.
    bool onLine() const { return !atEnd() && !peek().m_startsLine; }
    Token next();
    // Continues the statement with the next line.
    void joinNextLine() { m_tokens[m_at].m_startsLine = false; }
    // Takes the next token if it is `text`.
    bool accept(std::string_view text);
    // The same, but only on the line of the statement.
    bool acceptOnLine(std::string_view text) { return onLine() && accept(text); }

    // Terminals: each takes one token on the current line. `what` completes "... is expected".
    void expect(std::string_view text, std::string const& what);
    Token expectKind(Token::Kind kind, std::string const& what);
    std::int32_t integer(std::string const& what);
    double number(std::string const& what);
    Bytes string(std::string const& what);
    Bytes hex(std::string const& what);

    // Skips the rest of a failed statement, with the lines that continue it, or up to a "{" or "}".
    void skipStatement();

    void error(Position position, std::string const& text);
    // Records that something else was expected here, and ends the statement.
    [[noreturn]] void fail(std::string const& what);
    [[noreturn]] void fail(Position position, std::string const& text);

  private:
    // Whether the next line can only be the rest of a rule or node.
    bool isContinuation() const;
    double bits();
    // Where something is missing: after the last token when the line has ended.
    Position here() const;
    std::string found() const;

    std::vector<Token> m_tokens;
    std::size_t m_at = 0;
    std::vector<Diagnostic>& m_errors;
};

} // namespace Quorvane::Rules
