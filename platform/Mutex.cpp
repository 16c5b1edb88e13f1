// SPDX-License-Identifier: Apache-2.0
#include "platform/Mutex.h"

namespace Quorvane {

Mutex::Mutex() = default;
Mutex::~Mutex() = default;

Synchronized::Synchronized(Mutex& mutex) : m_mutex(mutex) {
    m_mutex.m_mutex.lock();
}

Synchronized::~Synchronized() {
    m_mutex.m_mutex.unlock();
}

} // namespace Quorvane
