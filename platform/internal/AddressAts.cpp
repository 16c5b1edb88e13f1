// SPDX-License-Identifier: Apache-2.0
#include "platform/internal/AddressSyntax.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace Quorvane::internal {

namespace {

constexpr auto npos = std::string_view::npos;
constexpr std::string_view s_blanks = " \t\r\n";
constexpr std::string_view s_delimiters = ",;<>";

class AtScan {
  public:
    explicit AtScan(std::string& text) : m_text(text) {}

    void spoil() {
        while (m_position < m_text.size()) {
            if (!skipGap()) {
                take(m_text[m_position]);
            }
        }
        endAddress();
    }

  private:
    // False unless a blank or a whole comment begins here.
    bool skipGap() {
        char const c = m_text[m_position];
        if (s_blanks.find(c) != npos) {
            ++m_position;
        } else if (c != '(' || !skip(afterComment, m_isCommentOpen)) {
            return false;
        }
        m_isAfterGap = true;
        return true;
    }

    void take(char c) {
        if (isDelimiter(c) || isNextWord(c)) {
            endAddress();
        }
        if (c == '@' && ++m_ats == 1) {
            m_firstAt = m_position;
        }
        m_isAfterGap = false;
        bool const beginsLiteral = c == '[' && m_before == '@';
        m_isInLiteral = beginsLiteral || (m_isInLiteral && c != ']');
        m_before = c;
        bool const isSkipped =
            beginsLiteral ? skipLiteral() : c == '"' && skip(afterQuotes, m_isQuoteOpen);
        if (!isSkipped) {
            ++m_position;
        }
    }

    // No byte of a whole literal means anything, but an "@" in it is a second one.
    bool skipLiteral() {
        auto const begin = m_position;
        if (!skip(afterLiteral, m_isLiteralOpen)) {
            return false;
        }
        m_ats += static_cast<int>(std::count(at(begin), at(m_position), '@'));
        m_isInLiteral = false;
        m_before = ']';
        return true;
    }

    std::string::const_iterator at(std::size_t position) const {
        return m_text.cbegin() + static_cast<std::ptrdiff_t>(position);
    }

    // Skips what the current byte opens. After one that is never closed no other is looked for:
    // with hostile text that would take long.
    bool skip(std::size_t (*after)(std::string_view, std::size_t), bool& isOpen) {
        auto const end = isOpen ? npos : after(m_text, m_position + 1);
        isOpen = end == npos;
        m_position = isOpen ? m_position : end;
        return !isOpen;
    }

    static std::size_t afterQuotes(std::string_view text, std::size_t position) {
        return afterSpan(text, position, '"');
    }
    static std::size_t afterLiteral(std::string_view text, std::size_t position) {
        return afterSpan(text, position, ']');
    }

    // The colons of an IPv6 literal separate nothing, even when nothing closes it.
    bool isDelimiter(char c) const {
        return s_delimiters.find(c) != npos || (c == ':' && !m_isInLiteral);
    }

    // "user@host.example other": blanks may stand around "@" and dots, but not inside of a label.
    bool isNextWord(char c) const {
        return m_isAfterGap && m_ats > 0 && !m_isInLiteral && !isJoint(m_before) && !isJoint(c);
    }
    static bool isJoint(char c) { return c == '@' || c == '.'; }

    void endAddress() {
        if (m_ats > 1) {
            m_text.insert(m_firstAt, 1, '@');
            ++m_position;
        }
        m_ats = 0;
        m_isInLiteral = false;
    }

    std::string& m_text;
    std::size_t m_position = 0;
    // Of the current address.
    int m_ats = 0;
    std::size_t m_firstAt = 0;
    char m_before = '\0'; // the last byte outside blanks and comments
    bool m_isAfterGap = false;
    bool m_isInLiteral = false;
    // Of the whole text: a mark that nothing closes is an ordinary byte, and so are those after it.
    bool m_isQuoteOpen = false;
    bool m_isCommentOpen = false;
    bool m_isLiteralOpen = false;
};

} // namespace

void spoilDoubleAts(std::string& text) {
    AtScan(text).spoil();
}

} // namespace Quorvane::internal
