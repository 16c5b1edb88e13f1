// SPDX-License-Identifier: Apache-2.0
#include "apps/input/LinePieces.h"

#include <algorithm>

namespace Quorvane {

namespace {

constexpr std::size_t bufferSize = 65536;

} // namespace

LinePieces::LinePieces(ByteSource& source) : m_source(source), m_buffer(bufferSize) {}

// Makes room and reads once; false at the end.
bool LinePieces::fill() {
    if (m_begin > 0) {
        std::copy(m_buffer.begin() + static_cast<std::ptrdiff_t>(m_begin),
                  m_buffer.begin() + static_cast<std::ptrdiff_t>(m_end), m_buffer.begin());
        m_end -= m_begin;
        m_begin = 0;
    }
    auto const count = m_source.read(m_buffer.data() + m_end, m_buffer.size() - m_end);
    m_end += count;
    return count > 0;
}

std::string_view LinePieces::peek(std::size_t size) {
    while (buffered().size() < size && fill()) {
    }
    return buffered().substr(0, size);
}

bool LinePieces::next(LinePiece& piece) {
    auto const start = peek(LinePiece::startSize);
    if (start.empty()) {
        return false;
    }
    auto const text = buffered();
    auto const lineBreak = text.find('\n');
    auto const length = lineBreak == std::string_view::npos ? text.size() : lineBreak + 1;
    piece.m_text = text.substr(0, length);
    piece.m_startsLine = m_isAtLineStart;
    m_isAtLineStart = lineBreak != std::string_view::npos;
    m_begin += length;
    return true;
}

bool LinePieces::skipTo(std::string_view start) {
    bool followsEmptyLine = true;
    while (!peek(LinePiece::startSize).empty()) {
        auto const text = buffered();
        if (m_isAtLineStart) {
            if (followsEmptyLine && text.starts_with(start)) {
                return true;
            }
            followsEmptyLine = text.starts_with('\n') || text.starts_with("\r\n");
        }
        auto const lineBreak = text.find('\n');
        m_isAtLineStart = lineBreak != std::string_view::npos;
        m_begin += m_isAtLineStart ? lineBreak + 1 : text.size();
    }
    return false;
}

void LinePieces::drain() {
    do {
        m_begin = m_end = 0;
    } while (fill());
}

} // namespace Quorvane
