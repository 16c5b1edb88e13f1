// SPDX-License-Identifier: Apache-2.0
#include "platform/Mutex.h"

#include <type_traits>

namespace Quorvane {

// A lock of static storage may be taken after its destructor has run: threads and static objects
// may still scan while the process ends. So there must be nothing that a destructor takes away.
static_assert(std::is_trivially_destructible_v<std::mutex>);

Mutex::Mutex() = default;
Mutex::~Mutex() = default;

Synchronized::Synchronized(Mutex& mutex) : m_mutex(mutex) {
    m_mutex.m_mutex.lock();
}

Synchronized::~Synchronized() {
    m_mutex.m_mutex.unlock();
}

} // namespace Quorvane
