// SPDX-License-Identifier: Apache-2.0
#include "apps/input/MessageReader.h"

#include <utility>

namespace Quorvane {

namespace {

constexpr std::string_view separator = "From ";

// ">From " and ">>From " mean the same text with one ">" less.
bool s_isQuotedSeparator(LinePiece const& piece) {
    auto const quotes = piece.m_text.find_first_not_of('>');
    return piece.startsWith(">") && quotes != std::string_view::npos &&
           piece.m_text.substr(quotes, separator.size()) == separator;
}

void s_append(HeaderSection& section, std::string_view text) {
    auto const room = maxHeaderSection - section.m_text.size();
    section.m_isTooLong = section.m_isTooLong || text.size() > room;
    section.m_text.append(text.substr(0, room));
}

} // namespace

MessageReader::MessageReader(std::unique_ptr<ByteSource> source, bool drain)
    : m_source(std::move(source)), m_pieces(*m_source), m_drain(drain) {}

bool MessageReader::next(HeaderSection& section) {
    if (!m_hasBegun) {
        m_hasBegun = true;
        m_isMbox = m_pieces.peek(separator.size()) == separator;
    }
    section = HeaderSection();
    return m_isMbox ? nextOfMbox(section) : single(section);
}

bool MessageReader::single(HeaderSection& section) {
    if (m_isAtEnd) {
        return false;
    }
    m_isAtEnd = true;
    readHeaders(section);
    if (m_drain) {
        m_pieces.drain();
    }
    return true;
}

// The previous body is skipped only now: its message must not wait for it, nor be lost when it
// cannot be read.
bool MessageReader::nextOfMbox(HeaderSection& section) {
    if (!m_isAtEnd) {
        skipBody();
    }
    if (m_isAtEnd) {
        return false;
    }
    section.m_number = ++m_number;
    readHeaders(section);
    return true;
}

void MessageReader::readHeaders(HeaderSection& section) {
    LinePiece piece;
    while (!(section.m_isTooLong && !m_isMbox)) {
        if (!m_pieces.next(piece)) {
            m_isAtEnd = true;
            return;
        }
        bool const isQuoted = m_isMbox && s_isQuotedSeparator(piece);
        s_append(section, piece.m_text.substr(isQuoted ? 1 : 0));
        if (piece.isEmptyLine()) {
            return;
        }
    }
}

// Reads the rest of the line that `piece` starts.
void MessageReader::skipLine(LinePiece piece) {
    while (!piece.m_text.ends_with('\n')) {
        if (!m_pieces.next(piece)) {
            return;
        }
    }
}

// Reads up to and including the next separator line. What comes before counts as following an empty
// line: the end of a header section, or the start of the input.
void MessageReader::skipBody() {
    bool followsEmptyLine = true;
    LinePiece piece;
    while (m_pieces.next(piece)) {
        if (followsEmptyLine && piece.startsWith(separator)) {
            skipLine(piece);
            return;
        }
        followsEmptyLine = piece.isEmptyLine();
    }
    m_isAtEnd = true;
}

} // namespace Quorvane
