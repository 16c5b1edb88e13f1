// SPDX-License-Identifier: Apache-2.0
//
// PooledInputs: inputs that the threads of a pool read (OrderedPool::Source). What has been read is
// worked on before a thread waits for more input. A signal ends the messages.
#pragma once

#include "apps/input/Inputs.h"
#include "apps/input/Interrupt.h"
#include "apps/input/OrderedPool.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Quorvane {

class PooledInputs : private InputWait {
  public:
    // As Inputs. `interrupt` outlives the object.
    PooledInputs(std::vector<std::string> const& paths, Interrupt const& interrupt,
                 HeaderLimits const& limits,
                 std::optional<std::filesystem::path> copies = std::nullopt);

    // `atEnd`: called with the number of messages when they have come to their end, unless a signal
    // ended them. The object outlives the pool.
    OrderedPool::Source source(std::function<void(std::uint64_t)> atEnd = [](std::uint64_t) {});

  private:
    bool next(InputItem& item, OrderedPool& pool);
    void waitForInput(int descriptor) const override;

    Interrupt const& m_interrupt;
    Inputs m_inputs;
    OrderedPool* m_pool = nullptr; // whose thread reads
};

} // namespace Quorvane
