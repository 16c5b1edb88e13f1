// SPDX-License-Identifier: Apache-2.0
#include "apps/input/MessageReader.h"

#include "apps/input/HeaderCheck.h"

#include <algorithm>
#include <new>
#include <utility>

namespace Quorvane {

namespace {

constexpr std::string_view separator = "From ";

// ">From " and ">>From " mean the same text with one ">" less. Only the start of a line is looked
// at, which does not depend on the pieces.
bool s_isQuotedSeparator(LinePiece const& piece) {
    auto const start = piece.m_text.substr(0, LinePiece::startSize);
    auto const quotes = std::min(start.find_first_not_of('>'), start.size());
    return piece.startsWith(">") && start.substr(quotes).starts_with(separator);
}

void s_drop(HeaderSection& section, std::string problem) {
    section.m_text = std::string();
    section.m_problem = std::move(problem);
}

void s_copy(HeaderSection& section, std::string_view text) {
    if (section.m_copy) {
        section.m_copy->append(text);
    }
}

} // namespace

void HeaderSection::clear() {
    m_number = 0;
    m_text.clear();
    m_problem.clear();
    m_copy.reset();
}

std::string noMemoryFor(std::size_t size) {
    return "not enough memory for its header section of " + std::to_string(size) + " bytes";
}

MessageReader::MessageReader(std::unique_ptr<ByteSource> source, ReaderOptions options)
    : m_source(std::move(source)), m_pieces(*m_source), m_options(std::move(options)) {}

bool MessageReader::next(HeaderSection& section) {
    if (m_thrown) {
        std::rethrow_exception(std::exchange(m_thrown, nullptr));
    }
    if (!m_hasBegun) {
        m_hasBegun = true;
        m_isMbox = m_pieces.peek(separator.size()) == separator;
    }
    section.clear();
    if (m_options.m_copies) {
        section.m_copy = std::make_shared<MessageCopy>(*m_options.m_copies);
    }
    return m_isMbox ? nextOfMbox(section) : single(section);
}

bool MessageReader::single(HeaderSection& section) {
    if (m_isAtEnd) {
        return false;
    }
    m_isAtEnd = true;
    readHeaders(section);
    if (section.m_copy) {
        copyBody(section);
    }
    if (m_options.m_drain) {
        m_pieces.drain();
    }
    return true;
}

// The previous body is skipped only now: its message must not wait for it, nor be lost when it
// cannot be read.
bool MessageReader::nextOfMbox(HeaderSection& section) {
    if (!m_isPastSeparator && !skipBody()) {
        return false;
    }
    m_isPastSeparator = false;
    section.m_number = ++m_number;
    readHeaders(section);
    if (section.m_copy) {
        copyBody(section);
    }
    return true;
}

void MessageReader::append(HeaderSection& section, std::string_view text) const {
    auto const size = section.m_text.size() + text.size();
    if (size > m_options.m_limits.m_maxBytes) {
        s_drop(section,
               hasHeaderField(section.m_text) ? tooLong(m_options.m_limits) : noHeaderField);
        return;
    }
    try {
        section.m_text.append(text);
    } catch (std::bad_alloc const&) {
        s_drop(section, noMemoryFor(size) + " or more");
    }
}

void MessageReader::readHeaders(HeaderSection& section) {
    LinePiece piece;
    while ((section.m_problem.empty() || m_isMbox) && m_pieces.next(piece)) {
        bool const isQuoted = m_isMbox && s_isQuotedSeparator(piece);
        s_copy(section, piece.m_text);
        if (section.m_problem.empty()) {
            append(section, piece.m_text.substr(isQuoted ? 1 : 0));
        }
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

// A message whose body cannot be read has its headers all the same.
void MessageReader::copyBody(HeaderSection& section) {
    if (!section.m_problem.empty()) {
        section.m_copy.reset();
        return;
    }
    try {
        readBody(*section.m_copy);
    } catch (InputError const&) {
        section.m_copy.reset();
        m_thrown = std::current_exception();
    }
}

// As readBody of an mbox, for what nobody wants a copy of. False at the end.
bool MessageReader::skipBody() {
    if (!m_pieces.skipTo(separator)) {
        return false;
    }
    LinePiece line;
    m_pieces.next(line);
    skipLine(line);
    return true;
}

// Reads up to and including the next separator line of an mbox, or to the end. What comes before
// counts as following an empty line: the end of a header section, or the start of the input. The
// empty line that an mbox has after each message is no part of the message.
void MessageReader::readBody(MessageCopy& copy) {
    std::string emptyLine;
    bool followsEmptyLine = true;
    LinePiece piece;
    while (m_pieces.next(piece)) {
        if (m_isMbox && followsEmptyLine && piece.startsWith(separator)) {
            skipLine(piece);
            m_isPastSeparator = true;
            return;
        }
        followsEmptyLine = piece.isEmptyLine();
        copy.append(emptyLine);
        emptyLine = m_isMbox && followsEmptyLine ? piece.m_text : std::string_view();
        copy.append(emptyLine.empty() ? piece.m_text : std::string_view());
    }
}

} // namespace Quorvane
