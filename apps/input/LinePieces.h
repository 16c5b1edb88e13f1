// SPDX-License-Identifier: Apache-2.0
//
// LinePieces: cuts the bytes of a source into lines, long lines into several pieces, so that one
// buffer is enough for any input. One object, one thread.
#pragma once

#include "apps/input/ByteSource.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace Quorvane {

struct LinePiece {
    // The first piece of a line has at least so many bytes, or the whole line, however its bytes
    // arrive: enough to see an empty line, or "From " with quotes before it.
    static constexpr std::size_t startSize = 80;

    // Valid until the next call. The line break, if any, is its last byte.
    std::string_view m_text;
    bool m_startsLine = false;

    // A whole line that consists of its line break only (LF or CR LF).
    bool isEmptyLine() const { return m_startsLine && (m_text == "\n" || m_text == "\r\n"); }
    bool startsWith(std::string_view text) const {
        return m_startsLine && m_text.substr(0, text.size()) == text;
    }
};

class LinePieces {
  public:
    // `source` must outlive the object.
    explicit LinePieces(ByteSource& source);

    // False at the end. Throws an InputError.
    bool next(LinePiece& piece);
    // The first bytes of what is left, `size` of them unless the end comes before.
    std::string_view peek(std::size_t size);
    // Skips lines up to one that begins with `start`, which is next then, at the start or after an
    // empty line. False when there is none; all is read then. Faster than to look at each line.
    bool skipTo(std::string_view start);
    // Reads and discards what is left.
    void drain();

  private:
    bool fill();
    std::string_view buffered() const { return {m_buffer.data() + m_begin, m_end - m_begin}; }

    ByteSource& m_source;
    std::vector<char> m_buffer;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
    bool m_isAtLineStart = true;
};

} // namespace Quorvane
