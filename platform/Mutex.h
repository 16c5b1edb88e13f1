// SPDX-License-Identifier: Apache-2.0
//
// Mutex: a plain, non-recursive lock. Synchronized: holds a Mutex for the length of a scope.
#pragma once

#include "include2/Export.h"

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

class QV_API Synchronized {
  public:
    explicit Synchronized(Mutex& mutex);
    Synchronized(Synchronized const&) = delete;
    Synchronized& operator=(Synchronized const&) = delete;
    ~Synchronized();

  private:
    Mutex& m_mutex;
};

} // namespace Quorvane
