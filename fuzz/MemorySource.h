// SPDX-License-Identifier: Apache-2.0
//
// Bytes of an input, given out in pieces of at most a fixed size.
#pragma once

#include "apps/input/ByteSource.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace Quorvane {

class MemorySource : public ByteSource {
  public:
    // The bytes outlive the source.
    MemorySource(std::string_view bytes, std::size_t mostAtOnce)
        : m_bytes(bytes), m_mostAtOnce(mostAtOnce) {}

    std::size_t read(char* buffer, std::size_t size) override {
        auto const count = std::min({size, m_mostAtOnce, m_bytes.size() - m_position});
        m_bytes.copy(buffer, count, m_position);
        m_position += count;
        return count;
    }

    std::uint64_t position() const override { return m_position; }

  private:
    std::string_view m_bytes;
    std::size_t m_mostAtOnce;
    std::size_t m_position = 0;
};

} // namespace Quorvane
