// SPDX-License-Identifier: Apache-2.0
#include "platform/internal/AddressSyntax.h"

#include "platform/Strings.h"

#include <algorithm>
#include <utility>

namespace Quorvane::internal {

namespace {

// A byte of a domain that is no literal. Routes are not used, so labels need no check.
bool s_isDomainByte(char c) {
    return !isBlankOrBreak(c) && static_cast<unsigned char>(c) > ' ' && c != '\x7f' &&
           std::string_view("()<>[]:;@\\,\"").find(c) == std::string_view::npos;
}

// All of these tell where `text` goes on after what stands at `position`, or npos when that is
// something else or has no end.

std::size_t s_afterDomain(std::string_view text, std::size_t position) {
    if (position >= text.size()) {
        return std::string_view::npos;
    }
    if (text[position] == '[') {
        return afterSpan(text, position + 1, ']');
    }
    auto const rest = text.substr(position);
    auto const end = std::find_if_not(rest.begin(), rest.end(), s_isDomainByte);
    return end == rest.begin() ? std::string_view::npos
                               : position + static_cast<std::size_t>(end - rest.begin());
}

// Blanks and comments, if there are any.
std::size_t s_afterFillers(std::string_view text, std::size_t position) {
    while (position < text.size() && (isBlankOrBreak(text[position]) || text[position] == '(')) {
        position = text[position] == '(' ? afterComment(text, position + 1) : position + 1;
    }
    return position;
}

bool s_isAt(std::string_view text, std::size_t position, char byte) {
    return position < text.size() && text[position] == byte;
}

std::size_t s_after(char byte, std::string_view text, std::size_t position) {
    return s_isAt(text, position, byte) ? s_afterFillers(text, position + 1)
                                        : std::string_view::npos;
}

// A route with its colon (RFC 5322 section 4.4), as in "<@relay.example,@next.example:user@host>".
std::size_t s_afterRoute(std::string_view text, std::size_t position) {
    bool isSeparated = true;
    while (isSeparated) {
        position = s_afterFillers(text, s_afterDomain(text, s_after('@', text, position)));
        isSeparated = s_isAt(text, position, ',');
        while (s_isAt(text, position, ',')) {
            position = s_after(',', text, position);
        }
        if (s_isAt(text, position, ':')) {
            return position + 1;
        }
    }
    return std::string_view::npos;
}

class BracketScan {
  public:
    explicit BracketScan(std::string_view text) : m_text(text) {}

    WellBracketed run() {
        m_found.m_length = wellBracketedLength();
        auto& marks = m_found.m_plainMarks;
        marks.erase(std::lower_bound(marks.begin(), marks.end(), m_found.m_length), marks.end());
        return std::move(m_found);
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
        m_before = isFiller ? m_before : m_text[m_position - 1];
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
            return m_isOpen ? isInside(c) : isOutside(c);
        }
    }

    bool goTo(std::size_t position) {
        auto const end = std::min(position, m_text.size());
        for (; m_position < end; ++m_position) {
            char const c = m_text[m_position];
            if (c == '<' || c == '>' || (c == ',' && m_isOpen)) {
                m_found.m_plainMarks.push_back(m_position);
            }
        }
        return position != std::string_view::npos;
    }

    bool open() {
        if (m_isOpen || m_wasOpen || m_sawAt) {
            return false;
        }
        m_isOpen = true;
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

    // Separators inside angle brackets belong to a route.
    bool isInside(char c) {
        if (c == '@' && m_before == '<') {
            return passRoute();
        }
        return c != ',' && c != ':' && c != ';';
    }

    bool passRoute() {
        auto const begin = m_position - 1;
        auto const end = s_afterRoute(m_text, begin);
        if (end != std::string_view::npos) {
            m_found.m_routes.emplace_back(begin, end);
            m_position = end;
        }
        return end != std::string_view::npos;
    }

    bool isOutside(char c) {
        if (c == '@') {
            m_sawAt = true;
        } else if (c == ',' || c == ':' || c == ';') {
            m_addressStart = m_position;
            m_sawAt = m_wasOpen = false;
        }
        return true;
    }

    std::string_view m_text;
    std::size_t m_position = 0;
    WellBracketed m_found;
    // Of the current address.
    std::size_t m_addressStart = 0;
    char m_before = '\0'; // the last byte outside blanks and comments
    bool m_isOpen = false;
    bool m_wasOpen = false;
    bool m_sawAt = false;
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
