// SPDX-License-Identifier: Apache-2.0
#include "received/ReceivedScanner.h"

#include "platform/Strings.h"

#include <array>
#include <string_view>

namespace Quorvane {

namespace {

constexpr auto npos = std::string::npos;

// Length of " by ", the marker in front of the receiving host's name.
constexpr std::string::size_type byMarkerLength = 4;
// Length of "helo" and of the one separator ("=", " ", ":") after it.
constexpr std::string::size_type heloMarkLength = 5;

constexpr std::array<char const*, 4> authenticationMarks{"authenticated bits", "authenticated as",
                                                         "(authenticated)", "authenticated user"};

bool s_isLineBreak(std::string const& text, std::string::size_type pos) {
    return pos < text.size() && (text[pos] == '\n' || text[pos] == '\r');
}

bool s_startsWith(std::string const& text, std::string::size_type pos, std::string_view word) {
    return pos <= text.size() && text.compare(pos, word.size(), word) == 0;
}

void s_trim(std::string& text) {
    stringLeftTrim(text);
    stringRightTrim(text);
}

bool s_hasAuthenticationMark(std::string const& text) {
    for (auto const* mark : authenticationMarks) {
        if (text.find(mark) != npos) {
            return true;
        }
    }
    return false;
}

} // namespace

void ReceivedScanner::parse() {
    stringToLowerNoCopy(m_text);
    m_fields.m_by.clear();
    splitOffReceivingHost();
    s_trim(m_text);
    if (m_text.empty() || runStates()) {
        finish();
    }
}

// --- the receiving host -------------------------------------------------------------------------

void ReceivedScanner::splitOffReceivingHost() {
    if (auto const marker = findByMarker(); marker != npos) {
        takeReceivingHost(marker + byMarkerLength, marker);
    } else {
        takeFoldedReceivingHost();
    }
}

// The marker after a tab (a folded header) wins over one after a space, and that over one anywhere,
// such as after a line break. That last form is one character shorter, but the name is looked for
// at the same distance: it loses its first character. Rules were made on names read this way.
ReceivedScanner::Position ReceivedScanner::findByMarker() const {
    for (auto const* marker : {"\tby ", " by ", "by "}) {
        if (auto const found = m_text.find(marker); found != npos) {
            return found;
        }
    }
    return npos;
}

// "by" at the end of a line with the name on the next one. The marker itself stays in the text.
void ReceivedScanner::takeFoldedReceivingHost() {
    auto const marker = m_text.find(" by");
    if (marker == npos || !s_isLineBreak(m_text, marker + 3)) {
        return;
    }
    auto const start = m_text.find_first_not_of("\t \r\n", marker + 3);
    if (start != npos) {
        takeReceivingHost(start, marker + 3);
    }
}

void ReceivedScanner::takeReceivingHost(Position start, Position cut) {
    auto const end = m_text.find_first_of("\t ([\r\n", start);
    m_fields.m_by = m_text.substr(start, end == npos ? npos : end - start);
    m_text.resize(cut);
}

// --- the states ---------------------------------------------------------------------------------

// False when the parse is abandoned. Every state moves on to a later one, so this ends.
bool ReceivedScanner::runStates() {
    m_position = 0;
    auto state = State::keyword;
    while (state != State::done && state != State::abandoned) {
        state = runState(state);
    }
    return state == State::done;
}

ReceivedScanner::State ReceivedScanner::runState(State state) {
    switch (state) {
    case State::keyword:
        return scanKeyword();
    case State::nameBeforeParenthesis:
        return scanNameBeforeParenthesis();
    case State::insideParenthesis:
        return scanInsideParenthesis();
    case State::address:
        return scanAddress();
    case State::reverseName:
        return scanReverseName();
    case State::bracketedAddress:
        return scanBracketedAddress();
    case State::heloName:
        return scanHeloName();
    case State::done:
    case State::abandoned:
        break;
    }
    return state;
}

ReceivedScanner::State ReceivedScanner::scanKeyword() {
    if (!s_startsWith(m_text, 0, "from")) {
        return State::done;
    }
    bool const isHeloForm = m_text.find("helo=") != npos;
    m_position = m_text.find_first_not_of("\t ", 4);
    if (m_position == npos) {
        return State::done;
    }
    return isHeloForm ? State::reverseName : State::nameBeforeParenthesis;
}

// The character in front of "(" is dropped whether or not it is a blank, as in "a.example(": a
// known oddity that the rules have always been made on.
ReceivedScanner::State ReceivedScanner::scanNameBeforeParenthesis() {
    auto const open = m_text.find('(', m_position);
    if (open == npos) {
        return State::reverseName;
    }
    if (open == m_position) {
        m_fields.m_from.clear();
    } else if (!takeName(m_fields.m_from, m_position, open - m_position - 1)) {
        return State::abandoned;
    }
    m_position = open + 1;
    return State::insideParenthesis;
}

// "(name [address])", where the character in front of "[" is dropped like the one in front of "(".
ReceivedScanner::State ReceivedScanner::scanInsideParenthesis() {
    bool const isAnnotated =
        s_startsWith(m_text, m_position, "helo") || s_startsWith(m_text, m_position, "ehlo");
    if (isAnnotated && !scanHeloAnnotation()) {
        return State::done;
    }
    auto const open = m_text.find('[', m_position);
    if (open == npos) {
        return State::address;
    }
    if (open != m_position &&
        !takeName(m_fields.m_reverseName, m_position, open - 1 - m_position)) {
        return State::abandoned;
    }
    m_position = open + 1;
    return State::address;
}

// "(helo name) (": the name in front of the parentheses was the reverse name. False when nothing
// follows the annotation.
bool ReceivedScanner::scanHeloAnnotation() {
    m_position += heloMarkLength;
    auto const close = m_text.find(')', m_position);
    if (close == npos) {
        return true;
    }
    auto name = m_text.substr(m_position, close - m_position);
    if (name.find(' ') != npos) {
        return true;
    }
    m_fields.m_reverseName = m_fields.m_from;
    m_fields.m_from = std::move(name);
    auto const next = m_text.find('(', close);
    if (next == npos) {
        return false;
    }
    m_position = next + 1;
    return true;
}

ReceivedScanner::State ReceivedScanner::scanAddress() {
    if (auto const end = m_text.find_first_of("])", m_position); end != npos) {
        takeAddress(m_position, end);
    }
    return State::done;
}

ReceivedScanner::State ReceivedScanner::scanReverseName() {
    if (m_text[m_position] == '[') {
        return State::bracketedAddress;
    }
    auto const end = m_text.find_first_of("\t ([", m_position);
    if (end == npos) {
        m_fields.m_reverseName = m_text.substr(m_position);
        return State::heloName;
    }
    if (!takeName(m_fields.m_reverseName, m_position, end - m_position)) {
        return State::abandoned;
    }
    auto const open = m_text.find('[', end);
    m_position = open == npos ? end : open;
    return open == npos ? State::heloName : State::bracketedAddress;
}

ReceivedScanner::State ReceivedScanner::scanBracketedAddress() {
    ++m_position;
    if (auto const end = m_text.find(']', m_position); end != npos) {
        takeAddress(m_position, end);
        m_position = end;
    }
    return State::heloName;
}

ReceivedScanner::State ReceivedScanner::scanHeloName() {
    auto const mark = m_text.find("helo", m_position);
    if (mark == npos) {
        return State::done;
    }
    auto const start = mark + heloMarkLength;
    auto const end = m_text.find_first_of(" )", start);
    if (end != npos && !takeName(m_fields.m_from, start, end - start)) {
        return State::abandoned;
    }
    return State::done;
}

// Host names hold no blanks. A blank means that the header has an unknown shape: the field is
// left empty, the parse is abandoned, and the next accessor call parses the record again.
bool ReceivedScanner::takeName(std::string& field, Position start, Position length) {
    field = m_text.substr(start, length);
    s_trim(field);
    if (field.find(' ') == npos) {
        return true;
    }
    field.clear();
    return false;
}

void ReceivedScanner::takeAddress(Position start, Position end) {
    auto const literal = m_text.substr(start, end - start);
    if (IPAddress::isValidIPAddress(literal)) {
        m_fields.m_address = IPAddress(literal);
    }
}

// --- the tail -----------------------------------------------------------------------------------

void ReceivedScanner::finish() {
    takeReceiveTime();
    takeAddressFromReverseName();
    judge();
    m_fields.m_isParsed = true;
}

// The date of an ordinary header stands after the receiving host and is cut off by now; only a
// header without one keeps it.
void ReceivedScanner::takeReceiveTime() {
    auto const semicolon = m_text.rfind(';');
    if (semicolon == npos) {
        return;
    }
    auto const start = m_text.find_first_not_of("\t\r\n ", semicolon + 1);
    if (start != npos) {
        copyStringToLower(m_text, m_fields.m_receiveTime, start, npos);
    }
}

// "from 192.0.2.3 by ...": what looked like a reverse name is the client's address.
void ReceivedScanner::takeAddressFromReverseName() {
    if (m_fields.m_address.isNull() && IPAddress::isValidIPAddress(m_fields.m_reverseName)) {
        m_fields.m_address = IPAddress(m_fields.m_reverseName);
        m_fields.m_reverseName.clear();
    }
}

void ReceivedScanner::judge() {
    if (!m_fields.m_address.isNull()) {
        m_fields.m_privateIP = IPAddress::isPrivateAddress(m_fields.m_address);
    }
    if (!m_fields.m_privateIP && s_hasAuthenticationMark(m_text)) {
        m_fields.m_authenticated = true;
    }
}

} // namespace Quorvane
