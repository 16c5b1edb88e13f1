// SPDX-License-Identifier: Apache-2.0
//
// MemorySource: a text as an input, given out in pieces of at most a fixed size, as a slow pipe
// would.
#pragma once

#include "apps/input/ByteSource.h"

#include <algorithm>
#include <string>
#include <utility>

namespace Quorvane::Testing {

class MemorySource : public ByteSource {
  public:
    MemorySource(std::string text, std::size_t mostAtOnce)
        : m_text(std::move(text)), m_mostAtOnce(mostAtOnce) {}

    std::size_t read(char* buffer, std::size_t size) override {
        auto const count = m_text.copy(buffer, std::min(size, m_mostAtOnce), m_position);
        m_position += count;
        return count;
    }
    std::uint64_t position() const override { return m_position; }

  private:
    std::string m_text;
    std::size_t m_mostAtOnce;
    std::size_t m_position = 0;
};

} // namespace Quorvane::Testing
