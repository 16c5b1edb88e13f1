// SPDX-License-Identifier: Apache-2.0
#include "rules/language/Lexer.h"

#include "rules/language/Literals.h"

#include <algorithm>
#include <array>

namespace Quorvane::Rules {

namespace {

constexpr std::array<std::string_view, 8> signs{"==", "!=", "->", "{", "}", ":", "(", ")"};

bool s_isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool s_isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool s_continuesWord(char c) {
    return s_isLetter(c) || s_isDigit(c) || c == '-' || c == '/' || c == '.';
}

bool s_isUtf8Tail(char c) {
    return (static_cast<unsigned char>(c) & 0xc0U) == 0x80U;
}

class Lexer {
  public:
    Lexer(std::string_view text, std::vector<Diagnostic>& errors)
        : m_rest(text), m_errors(errors) {}

    std::vector<Token> run() {
        while (skipBlanks(), !m_rest.empty() && m_errors.size() < maxErrors) {
            if (m_tokens.size() == maxTokens) {
                reject(m_rest.size(), "more than " + std::to_string(maxTokens) +
                                          " words and signs; no rule set has so many");
                break;
            }
            token();
        }
        add(Token::Kind::end, 0, 0);
        return std::move(m_tokens);
    }

  private:
    char at(std::size_t i) const { return i < m_rest.size() ? m_rest[i] : '\0'; }

    void advance(std::size_t count) {
        for (; count > 0 && !m_rest.empty(); --count, m_rest.remove_prefix(1)) {
            if (m_rest.front() == '\n') {
                ++m_here.m_line;
                m_here.m_column = 1;
                m_startsLine = true;
            } else if (!s_isUtf8Tail(m_rest.front())) {
                ++m_here.m_column;
            }
        }
    }

    std::size_t toLineEnd() const { return std::min(m_rest.find('\n'), m_rest.size()); }

    void skipBlanks() {
        for (;;) {
            auto const c = at(0);
            if (c == '#') {
                advance(toLineEnd());
            } else if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
                advance(1);
            } else {
                return;
            }
        }
    }

    // Adds the next `length` bytes as a token, without `quotes` bytes at both ends.
    void add(Token::Kind kind, std::size_t length, std::size_t quotes) {
        auto const text = m_rest.substr(quotes, length - 2 * quotes);
        m_tokens.push_back({kind, text, m_here, m_startsLine});
        m_startsLine = false;
        advance(length);
    }

    void reject(std::size_t length, std::string const& text) {
        m_errors.push_back({m_here, text});
        m_startsLine = false;
        advance(length);
    }

    void token() {
        auto const c = at(0);
        if (s_isLetter(c)) {
            add(Token::Kind::word, wordLength(), 0);
        } else if (startsNumber()) {
            add(Token::Kind::number, numberLength(), 0);
        } else if (c == '"') {
            string();
        } else if (c == '\'') {
            character();
        } else {
            sign();
        }
    }

    std::size_t wordLength() const {
        std::size_t length = 1;
        while (s_continuesWord(at(length))) {
            ++length;
        }
        return length;
    }

    bool startsNumber() const {
        auto const c = at(0);
        auto const isSign = c == '+' || c == '-';
        auto const first = isSign ? at(1) : c;
        return s_isDigit(first) || first == '.' || (isSign && s_isLetter(first));
    }

    std::size_t numberLength() const {
        auto const isHexadecimal = at(0) == '0' && at(1) == 'x';
        std::size_t length = 1;
        for (;; ++length) {
            auto const c = at(length);
            auto const before = at(length - 1);
            auto const isExponentSign =
                (c == '+' || c == '-') && (before == 'e' || before == 'E') && !isHexadecimal;
            if (!s_isLetter(c) && !s_isDigit(c) && c != '.' && !isExponentSign) {
                return length;
            }
        }
    }

    void string() {
        std::size_t end = 1;
        for (; end < m_rest.size() && m_rest[end] != '\n'; ++end) {
            if (m_rest[end] == '"') {
                add(Token::Kind::string, end + 1, 1);
                return;
            }
            end += m_rest[end] == '\\' && at(end + 1) != '\n' ? 1 : 0;
        }
        reject(end, "this text has no end; close it with \" on the same line");
    }

    // A malformed character still counts as one, so that the statement around it can be read.
    void character() {
        auto const isWhole = at(1) >= ' ' && at(1) <= '~' && at(2) == '\'';
        if (!isWhole) {
            m_errors.push_back({m_here,
                                "one printable character between single quotes is expected, "
                                "as in 'd'"});
        }
        add(Token::Kind::character, isWhole ? 3 : brokenCharacterLength(), 1);
    }

    std::size_t brokenCharacterLength() const {
        auto const end = std::min(m_rest.find_first_of("'\n", 1), m_rest.size());
        return at(end) == '\'' ? end + 1 : std::max<std::size_t>(end, 2);
    }

    void sign() {
        for (auto const sign : signs) {
            if (m_rest.substr(0, sign.size()) == sign) {
                add(Token::Kind::sign, sign.size(), 0);
                return;
            }
        }
        auto const c = at(0);
        auto const isSlip = c == '=' || c == '!';
        if (isSlip) {
            m_tokens.push_back({Token::Kind::sign, c == '=' ? "==" : "!=", m_here, m_startsLine});
        }
        reject(1, unexpected(c));
    }

    static std::string unexpected(char c) {
        auto shown = "unexpected character " + quotedText({&c, 1});
        if (c == '=') {
            return shown + "; write == for \"equals\"";
        }
        if (c == '!') {
            return shown + "; write != for \"differs from\"";
        }
        if (c == '%') {
            return shown + "; support is a percentage without the sign";
        }
        return shown;
    }

    std::string_view m_rest;
    std::vector<Diagnostic>& m_errors;
    std::vector<Token> m_tokens;
    Position m_here{1, 1};
    bool m_startsLine = true;
};

} // namespace

std::vector<Token> tokenize(std::string_view text, std::vector<Diagnostic>& errors) {
    return Lexer(text, errors).run();
}

} // namespace Quorvane::Rules
