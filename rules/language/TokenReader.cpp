// SPDX-License-Identifier: Apache-2.0
#include "rules/language/TokenReader.h"

#include "rules/language/Literals.h"

namespace Quorvane::Rules {

Token TokenReader::next() {
    auto const token = peek();
    if (!atEnd()) {
        ++m_at;
    }
    return token;
}

bool TokenReader::accept(std::string_view text) {
    if (!peek().is(text)) {
        return false;
    }
    next();
    return true;
}

void TokenReader::expect(std::string_view text, std::string const& what) {
    if (!acceptOnLine(text)) {
        fail(what);
    }
}

Token TokenReader::expectKind(Token::Kind kind, std::string const& what) {
    if (!onLine() || peek().m_kind != kind) {
        fail(what);
    }
    return next();
}

std::int32_t TokenReader::integer(std::string const& what) {
    auto const token = expectKind(Token::Kind::number, what);
    if (auto const value = parseInteger(token.m_text)) {
        return *value;
    }
    error(token.m_position,
          what + ", a whole number of 32 bits; \"" + std::string(token.m_text) + "\" is not one");
    return 0;
}

double TokenReader::number(std::string const& what) {
    if (acceptOnLine("bits")) {
        return bits();
    }
    if (acceptOnLine("inf")) {
        return *parseNumber("inf");
    }
    auto const token = expectKind(Token::Kind::number, what);
    if (auto const value = parseNumber(token.m_text)) {
        return *value;
    }
    error(token.m_position, what + "; \"" + std::string(token.m_text) + "\" is not one");
    return 0;
}

double TokenReader::bits() {
    std::string const what = "bits(0x...) with up to 16 hexadecimal digits is expected";
    expect("(", what);
    auto const token = expectKind(Token::Kind::number, what);
    auto const value = parseBits(token.m_text);
    if (!value) {
        error(token.m_position, what + "; \"" + std::string(token.m_text) + "\" is not one");
    }
    expect(")", "\")\" is expected");
    return value.value_or(0);
}

Bytes TokenReader::string(std::string const& what) {
    auto const token = expectKind(Token::Kind::string, what);
    if (auto const value = unescape(token.m_text)) {
        return *value;
    }
    error(token.m_position, "this text holds an unknown escape; \\n, \\r, \\t, \\\\, \\\" and "
                            "\\xNN with two hexadecimal digits are known");
    return {};
}

Bytes TokenReader::hex(std::string const& what) {
    auto const token = expectKind(Token::Kind::string, what);
    if (auto const value = parseHex(token.m_text)) {
        return *value;
    }
    error(token.m_position, "pairs of hexadecimal digits are expected, as in \"00 ff\"");
    return {};
}

bool TokenReader::isContinuation() const {
    auto const& token = peek();
    return token.m_kind == Token::Kind::string || token.is("name") || token.is("because") ||
           token.is("when") || token.is("always");
}

void TokenReader::skipStatement() {
    while ((onLine() || isContinuation()) && !peek().is("{") && !peek().is("}")) {
        next();
    }
}

void TokenReader::error(Position position, std::string const& text) {
    m_errors.push_back({position, text});
    if (m_errors.size() >= maxErrors) {
        throw TextFailed();
    }
}

void TokenReader::fail(std::string const& what) {
    fail(here(), what + "; found " + found());
}

void TokenReader::fail(Position position, std::string const& text) {
    error(position, text);
    throw StatementFailed();
}

Position TokenReader::here() const {
    if (m_at == 0 || (onLine() && !atEnd())) {
        return peek().m_position;
    }
    auto const& last = m_tokens[m_at - 1];
    auto const quotes =
        last.m_kind == Token::Kind::string || last.m_kind == Token::Kind::character ? 2U : 0U;
    return {last.m_position.m_line, last.m_position.m_column + last.m_text.size() + quotes};
}

std::string TokenReader::found() const {
    return onLine() ? '"' + std::string(peek().m_text) + '"' : "the end of the line";
}

} // namespace Quorvane::Rules
