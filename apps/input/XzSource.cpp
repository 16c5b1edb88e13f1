// SPDX-License-Identifier: Apache-2.0
#include "apps/input/XzSource.h"

#include "apps/input/PackedReader.h"

#include <new>
#include <utility>

namespace Quorvane {

XzSource::XzSource(std::unique_ptr<ByteSource> packed) : m_packed(std::move(packed)) {
    if (lzma_stream_decoder(&m_stream, maxUnpackingMemory, LZMA_CONCATENATED) != LZMA_OK) {
        throw std::bad_alloc();
    }
}

XzSource::~XzSource() {
    lzma_end(&m_stream);
}

// What was unpacked before damage is returned; the next read tells of the damage.
std::size_t XzSource::read(char* buffer, std::size_t size) {
    m_stream.next_out = reinterpret_cast<std::uint8_t*>(buffer);
    m_stream.avail_out = size;
    while (m_status == LZMA_OK && m_stream.avail_out == size) {
        fill();
        m_status = lzma_code(&m_stream, m_isPackedEnd ? LZMA_FINISH : LZMA_RUN);
    }
    auto const count = size - m_stream.avail_out;
    if (count == 0 && m_status != LZMA_STREAM_END) {
        fail();
    }
    return count;
}

void XzSource::fill() {
    if (m_stream.avail_in == 0 && !m_isPackedEnd) {
        m_stream.avail_in = m_packed->read(m_buffer.data(), m_buffer.size());
        m_stream.next_in = reinterpret_cast<std::uint8_t const*>(m_buffer.data());
        m_isPackedEnd = m_stream.avail_in == 0;
    }
}

void XzSource::fail() const {
    switch (m_status) {
    case LZMA_MEMLIMIT_ERROR:
        throw InputError(needsTooMuchMemory());
    case LZMA_MEM_ERROR:
        throw std::bad_alloc();
    case LZMA_BUF_ERROR:
        throw InputError(std::string(damagedData) + endsTooEarly);
    case LZMA_OPTIONS_ERROR:
        throw InputError(std::string(damagedData) + "it needs a newer version of liblzma");
    default:
        throw InputError(std::string(damagedData) + "its bytes are not those that were packed");
    }
}

} // namespace Quorvane
