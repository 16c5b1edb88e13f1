// SPDX-License-Identifier: Apache-2.0
//
// MessageReader: the header sections of one input, a single message or an mbox (RFC 4155: it begins
// with "From "). An mbox is split at the lines that begin with "From " and follow an empty line; in
// header sections the ">" that mboxrd writers put before such lines is removed. Bodies are not
// kept; that of a single message is not even read. One object, one thread.
#pragma once

#include "apps/input/LinePieces.h"

#include <cstddef>
#include <memory>
#include <string>

namespace Quorvane {

// No mail server accepts a header section of this size; more would only use memory.
inline constexpr std::size_t maxHeaderSection = std::size_t{64} << 20;

struct HeaderSection {
    // Position in an mbox, from 1; 0 for a single message.
    std::size_t m_number = 0;
    // Up to and including the empty line that ends it, without the separator line.
    std::string m_text;
    // Longer than maxHeaderSection; the text is then cut.
    bool m_isTooLong = false;
};

class MessageReader {
  public:
    // `drain`: read a single message to its end, so that the writer of a pipe can finish.
    MessageReader(std::unique_ptr<ByteSource> source, bool drain);

    // False at the end. Throws an InputError.
    bool next(HeaderSection& section);

    std::uint64_t position() const { return m_source->position(); }

  private:
    void readHeaders(HeaderSection& section);
    void skipBody();
    void skipLine(LinePiece piece);
    bool nextOfMbox(HeaderSection& section);
    bool single(HeaderSection& section);

    std::unique_ptr<ByteSource> m_source;
    LinePieces m_pieces;
    bool m_drain;
    bool m_hasBegun = false;
    bool m_isMbox = false;
    bool m_isAtEnd = false;
    std::size_t m_number = 0;
};

} // namespace Quorvane
