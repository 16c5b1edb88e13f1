// SPDX-License-Identifier: Apache-2.0
#include "platform/internal/AddressSyntax.h"

#include "platform/Strings.h"

#include <algorithm>
#include <utility>

namespace Quorvane::internal {

namespace {

class BracketScan {
  public:
    explicit BracketScan(std::string_view text) : m_text(text) {}

    WellBracketed run() {
        auto const length = wellBracketedLength();
        auto& brackets = m_plainBrackets;
        brackets.erase(std::lower_bound(brackets.begin(), brackets.end(), length), brackets.end());
        return {length, std::move(brackets)};
    }

  private:
    std::size_t wellBracketedLength() {
        while (m_position < m_text.size()) {
            if (!step(m_text[m_position++])) {
                return m_addressStart;
            }
        }
        return m_isOpen ? m_addressStart : m_text.size();
    }

    // All of these are false when a bracket is out of place, or a separator within brackets.
    bool step(char c) {
        bool const inPlace = isInPlace(c);
        bool const isFiller = isBlankOrBreak(c) || c == '(';
        m_before = isFiller ? m_before : c;
        return inPlace;
    }

    bool isInPlace(char c) {
        switch (c) {
        case '"':
            return goTo(afterSpan(m_text, m_position, '"'));
        case '(':
            return goTo(afterComment(m_text, m_position));
        case '[':
            return m_before == '@' && goTo(afterSpan(m_text, m_position, ']'));
        case '<':
            return open();
        case '>':
            return close();
        default:
            return m_isOpen ? isInPath(c) : isOutside(c);
        }
    }

    bool goTo(std::size_t position) {
        auto const end = std::min(position, m_text.size());
        for (; m_position < end; ++m_position) {
            if (m_text[m_position] == '<' || m_text[m_position] == '>') {
                m_plainBrackets.push_back(m_position);
            }
        }
        return position != std::string_view::npos;
    }

    bool open() {
        if (m_isOpen || m_wasOpen || m_sawAt) {
            return false;
        }
        m_isOpen = true;
        m_isRoute = false;
        return true;
    }

    bool close() {
        if (!m_isOpen) {
            return false;
        }
        m_isOpen = false;
        m_wasOpen = true;
        return true;
    }

    // Separators inside angle brackets belong to a route:
    // "<@relay.example,@next.example:user@host>". After an error GMime would go on behind the
    // comma.
    bool isInPath(char c) {
        if (c == '@' && m_before == '<') {
            m_isRoute = !m_sawError;
        }
        bool const inPlace = c == ',' || c == ':' ? m_isRoute : c != ';';
        m_isRoute = m_isRoute && c != ':';
        return inPlace;
    }

    bool isOutside(char c) {
        if (c == '@') {
            m_sawAt = true;
        } else if (c == ',' || c == ':' || c == ';') {
            m_addressStart = m_position;
            m_sawAt = m_wasOpen = false;
        }
        m_sawError = c != ',' && (m_sawError || isError(c));
        return true;
    }

    // No part of a word, or a word without a beginning; nothing but a comma follows a group.
    bool isError(char c) const {
        bool const isControl =
            (static_cast<unsigned char>(c) < ' ' && !isBlankOrBreak(c)) || c == '\x7f';
        bool const isFirst =
            std::string_view("\0,:;<>", 6).find(m_before) != std::string_view::npos;
        return isControl || c == ')' || c == ']' || c == '\\' || c == ';' || (c == '.' && isFirst);
    }

    std::string_view m_text;
    std::size_t m_position = 0;
    std::vector<std::size_t> m_plainBrackets;
    // Of the current address.
    std::size_t m_addressStart = 0;
    char m_before = '\0'; // the last byte outside blanks and comments
    bool m_isOpen = false;
    bool m_isRoute = false;
    bool m_wasOpen = false;
    bool m_sawAt = false;
    bool m_sawError = false; // since the last comma between addresses
};

bool s_isEscaped(std::string_view text, std::size_t position) {
    auto const other = text.substr(0, position).find_last_not_of('\\');
    return (position - (other + 1)) % 2 != 0;
}

bool s_isAfterLiteral(std::string_view text, std::size_t position) {
    while (position > 0 && isBlankOrBreak(text[position - 1])) {
        --position;
    }
    return position > 0 && text[position - 1] == ']';
}

} // namespace

std::vector<std::size_t> openCommentsAfterLiterals(std::string_view text) {
    std::vector<std::size_t> found;
    std::size_t closing = 0; // parentheses behind `at` that nothing behind it opens
    for (auto at = text.size(); at-- > 0;) {
        bool const opens = text[at] == '(';
        if ((!opens && text[at] != ')') || s_isEscaped(text, at)) {
            continue;
        }
        if (!opens) {
            ++closing;
        } else if (closing > 0) {
            --closing;
        } else if (s_isAfterLiteral(text, at)) {
            found.push_back(at);
        }
    }
    return found;
}

WellBracketed wellBracketed(std::string_view text) {
    return BracketScan(text).run();
}

} // namespace Quorvane::internal
