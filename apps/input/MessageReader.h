// SPDX-License-Identifier: Apache-2.0
//
// MessageReader: the header sections of one input, a single message or an mbox (RFC 4155: it begins
// with "From "). An mbox is split at the lines that begin with "From " and follow an empty line; in
// header sections the ">" that mboxrd writers put before such lines is removed. Bodies are not
// kept, unless somebody wants a copy of the messages; that of a single message is not even read.
// One object, one thread.
#pragma once

#include "apps/input/LinePieces.h"
#include "apps/input/MessageCopy.h"
#include "platform/HeaderReader.h"

#include <cstddef>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace Quorvane {

// Why a message with a header section of this size was not judged.
std::string noMemoryFor(std::size_t size);

struct HeaderSection {
    // Keeps the memory of the text.
    void clear();

    // Position in an mbox, from 1; 0 for a single message.
    std::size_t m_number = 0;
    // Up to and including the empty line that ends it, without the separator line. Empty when there
    // is a problem with it.
    std::string m_text;
    // Not empty: why it was not kept, with its size.
    std::string m_problem;
    // The whole message, if copies are wanted.
    std::shared_ptr<MessageCopy> m_copy;
};

struct ReaderOptions {
    // Read a single message to its end, so that the writer of a pipe can finish.
    bool m_drain = false;
    // Copies are wanted; large ones are kept in this folder.
    std::optional<std::filesystem::path> m_copies = {};
    // More bytes of a header section than these are not kept.
    HeaderLimits m_limits = {};
};

class MessageReader {
  public:
    MessageReader(std::unique_ptr<ByteSource> source, ReaderOptions options);

    // False at the end. Throws an InputError.
    bool next(HeaderSection& section);

    std::uint64_t position() const { return m_source->position(); }

  private:
    void readHeaders(HeaderSection& section);
    void append(HeaderSection& section, std::string_view text) const;
    void readBody(MessageCopy& copy);
    bool skipBody();
    void skipLine(LinePiece piece);
    bool nextOfMbox(HeaderSection& section);
    bool single(HeaderSection& section);
    void copyBody(HeaderSection& section);

    std::unique_ptr<ByteSource> m_source;
    LinePieces m_pieces;
    ReaderOptions m_options;
    bool m_hasBegun = false;
    bool m_isMbox = false;
    bool m_isAtEnd = false;
    bool m_isPastSeparator = false; // the header section of a record is next
    std::size_t m_number = 0;
    std::exception_ptr m_thrown; // while a body was copied; thrown by the next call
};

} // namespace Quorvane
