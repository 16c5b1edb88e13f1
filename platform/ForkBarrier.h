// SPDX-License-Identifier: Apache-2.0
//
// ForkBarrier: while one exists, fork() of another thread waits.
//
// A forked child has only the thread that forked, but a copy of every lock. One that another thread
// held at that moment stays locked there for ever. So whoever takes a lock of this library, or
// calls a library that takes locks of its own, makes a barrier first. Keep it short: call neither
// the host nor fork, nor anything that waits for the network meanwhile. Barriers of one thread may
// be nested, and threads do not wait for one another: each has a lock of its own.
//
//     ForkBarrier const barrier;
//     std::lock_guard const lock(m_mutex);
#pragma once

#include "include2/Export.h"

namespace Quorvane {

class QV_API ForkBarrier {
  public:
    ForkBarrier() noexcept;
    ForkBarrier(ForkBarrier const&) = delete;
    ForkBarrier& operator=(ForkBarrier const&) = delete;
    ~ForkBarrier();
};

} // namespace Quorvane
