// SPDX-License-Identifier: Apache-2.0
//
// Mutex: a plain, non-recursive lock. Synchronized: holds a Mutex for the length of a scope. fork()
// in another thread waits meanwhile, so that no child inherits the lock.
#pragma once

#include "include2/Export.h"
#include "platform/ForkBarrier.h"

#include <mutex>

namespace Quorvane {

class QV_API Mutex {
  public:
    Mutex();
    Mutex(Mutex const&) = delete;
    Mutex& operator=(Mutex const&) = delete;
    ~Mutex();

  private:
    friend class Synchronized;
    std::mutex m_mutex;
};

// Holds a Mutex from construction to destruction, on one thread.
class QV_API Synchronized {
  public:
    // Waits for the lock. `mutex` outlives this object.
    explicit Synchronized(Mutex& mutex);
    Synchronized(Synchronized const&) = delete;
    Synchronized& operator=(Synchronized const&) = delete;
    ~Synchronized();

  private:
    [[no_unique_address]] ForkBarrier m_barrier;
    Mutex& m_mutex;
};

} // namespace Quorvane
