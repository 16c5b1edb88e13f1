// SPDX-License-Identifier: Apache-2.0
#include "apps/input/PooledInputs.h"

#include <utility>

namespace Quorvane {

PooledInputs::PooledInputs(std::vector<std::string> const& paths, Interrupt const& interrupt,
                           HeaderLimits const& limits, std::optional<std::filesystem::path> copies)
    : m_interrupt(interrupt), m_inputs(paths, *this, limits, std::move(copies)) {}

OrderedPool::Source PooledInputs::source(std::function<void(std::uint64_t)> atEnd) {
    return [this, atEnd = std::move(atEnd), count = std::uint64_t{0}](InputItem& item,
                                                                      OrderedPool& pool) mutable {
        bool const isThere = next(item, pool);
        if (isThere) {
            ++count;
        } else if (m_interrupt.signalNumber() == 0) {
            atEnd(count);
        }
        return isThere;
    };
}

bool PooledInputs::next(InputItem& item, OrderedPool& pool) {
    m_pool = &pool;
    try {
        return m_interrupt.signalNumber() == 0 && m_inputs.next(item);
    } catch (Interrupted const&) {
        return false;
    }
}

void PooledInputs::waitForInput(int descriptor) const {
    if (!isInputReady(descriptor)) {
        m_pool->sourceWaits();
    }
    m_interrupt.waitForInput(descriptor);
}

} // namespace Quorvane
