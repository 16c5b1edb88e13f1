// SPDX-License-Identifier: Apache-2.0
//
// NoCancellation: puts off pthread_cancel for the length of a scope. The GNU C library cancels a
// thread by an exception that must not be caught for good, and cannot pass a function that throws
// nothing; either ends the process. So a scan ends first, and its thread after it.
#pragma once

#include <pthread.h>

namespace Quorvane {

class NoCancellation {
  public:
    NoCancellation() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_before); }
    NoCancellation(NoCancellation const&) = delete;
    NoCancellation& operator=(NoCancellation const&) = delete;
    ~NoCancellation() { pthread_setcancelstate(m_before, nullptr); }

  private:
    int m_before = PTHREAD_CANCEL_ENABLE;
};

} // namespace Quorvane
