// SPDX-License-Identifier: Apache-2.0
#include "received/ReceivedScanner.h"

#include "platform/Strings.h"

#include <cstring>
#include <string_view>

namespace Quorvane {

namespace {

constexpr auto npos = std::string::npos;

// Length of " by ", the marker in front of the receiving host's name.
constexpr std::string::size_type byMarkerLength = 4;
// Length of "helo" and of the one separator ("=", " ", ":") after it.
constexpr std::string::size_type heloMarkLength = 5;

using Position = std::string::size_type;

// --- looking into text --------------------------------------------------------------------------
// Every hop of every message is searched for half a dozen words and bytes, nearly always in vain.

bool s_isLineBreak(std::string_view text, Position pos) {
    return pos < text.size() && (text[pos] == '\n' || text[pos] == '\r');
}

bool s_startsWith(std::string_view text, Position pos, std::string_view word) {
    return pos <= text.size() && text.substr(pos, word.size()) == word;
}

// As std::string_view::find. It looks for the byte of `word` at `rare`, which should be one that
// ordinary headers hardly have: so most of the text is passed over without a comparison.
template<Position rare, std::size_t size>
Position s_find(std::string_view text, char const (&word)[size], Position from = 0) {
    constexpr auto length = size - 1;
    static_assert(rare < length);
    for (auto at = text.find(word[rare], from + rare); at != npos;
         at = text.find(word[rare], at + 1)) {
        auto const start = at - rare;
        if (start + length <= text.size() && std::memcmp(&text[start], word, length) == 0) {
            return start;
        }
    }
    return npos;
}

// A byte that ends the name of the receiving host.
bool s_endsHost(char c) {
    constexpr std::uint64_t low =
        1ULL << ' ' | 1ULL << '\t' | 1ULL << '\r' | 1ULL << '\n' | 1ULL << '(';
    auto const byte = static_cast<unsigned char>(c);
    return byte < 64 ? (low >> byte & 1U) != 0 : c == '[';
}

// Where the first byte stands of which `isEnd` is true, or npos.
template<typename IsEnd>
Position s_findByte(std::string_view text, Position from, IsEnd isEnd) {
    for (auto at = from; at < text.size(); ++at) {
        if (isEnd(text[at])) {
            return at;
        }
    }
    return npos;
}

bool s_isAuthenticationMark(std::string_view text, Position word, Position end) {
    bool const isInParentheses = word > 0 && text[word - 1] == '(' && s_startsWith(text, end, ")");
    return isInParentheses || s_startsWith(text, end, " bits") || s_startsWith(text, end, " as") ||
           s_startsWith(text, end, " user");
}

// "authenticated bits", "authenticated as", "(authenticated)" or "authenticated user".
bool s_hasAuthenticationMark(std::string_view text) {
    static constexpr char mark[] = "authenticated";
    for (auto at = s_find<1>(text, mark); at != npos; at = s_find<1>(text, mark, at + 1)) {
        if (s_isAuthenticationMark(text, at, at + sizeof mark - 1)) {
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
    stringLeftTrim(m_text);
    stringRightTrim(m_text);
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
    if (auto const folded = s_find<0>(m_text, "\tby "); folded != npos) {
        return folded;
    }
    auto const spaced = s_find<1>(m_text, " by ");
    return spaced != npos ? spaced : s_find<0>(m_text, "by ");
}

// "by" at the end of a line with the name on the next one. The marker itself stays in the text.
void ReceivedScanner::takeFoldedReceivingHost() {
    auto const marker = s_find<1>(m_text, " by");
    if (marker == npos || !s_isLineBreak(m_text, marker + 3)) {
        return;
    }
    auto const start = s_findByte(m_text, marker + 3, [](char c) { return !isBlankOrBreak(c); });
    if (start != npos) {
        takeReceivingHost(start, marker + 3);
    }
}

void ReceivedScanner::takeReceivingHost(Position start, Position cut) {
    auto const end = s_findByte(m_text, start, s_endsHost);
    m_fields.m_by.assign(m_text, start, end == npos ? npos : end - start);
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
    bool const isHeloForm = s_find<4>(m_text, "helo=") != npos;
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
    auto const end = s_findByte(m_text, m_position, [](char c) { return c == ']' || c == ')'; });
    if (end != npos) {
        takeAddress(m_position, end);
    }
    return State::done;
}

ReceivedScanner::State ReceivedScanner::scanReverseName() {
    if (m_text[m_position] == '[') {
        return State::bracketedAddress;
    }
    auto const end = s_findByte(
        m_text, m_position, [](char c) { return c == '\t' || c == ' ' || c == '(' || c == '['; });
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
    auto const mark = s_find<0>(m_text, "helo", m_position);
    if (mark == npos) {
        return State::done;
    }
    auto const start = mark + heloMarkLength;
    auto const end = s_findByte(m_text, start, [](char c) { return c == ' ' || c == ')'; });
    if (end != npos && !takeName(m_fields.m_from, start, end - start)) {
        return State::abandoned;
    }
    return State::done;
}

// Host names hold no blanks. A blank means that the header has an unknown shape: the field is
// left empty, the parse is abandoned, and the next accessor call parses the record again.
bool ReceivedScanner::takeName(std::string& field, Position start, Position length) {
    field = trimmed(std::string_view(m_text).substr(start, length));
    if (field.find(' ') == npos) {
        return true;
    }
    field.clear();
    return false;
}

void ReceivedScanner::takeAddress(Position start, Position end) {
    if (IPAddress const address(m_text.substr(start, end - start)); !address.isNull()) {
        m_fields.m_address = address;
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
    auto const* const semicolon = ::memrchr(m_text.data(), ';', m_text.size());
    if (semicolon == nullptr) {
        return;
    }
    auto const after =
        static_cast<Position>(static_cast<char const*>(semicolon) - m_text.data()) + 1;
    auto const start = s_findByte(m_text, after, [](char c) { return !isBlankOrBreak(c); });
    if (start != npos) {
        copyStringToLower(m_text, m_fields.m_receiveTime, start, npos);
    }
}

// "from 192.0.2.3 by ...": what looked like a reverse name is the client's address.
void ReceivedScanner::takeAddressFromReverseName() {
    if (!m_fields.m_address.isNull()) {
        return;
    }
    if (IPAddress const address(m_fields.m_reverseName); !address.isNull()) {
        m_fields.m_address = address;
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
