// SPDX-License-Identifier: Apache-2.0
//
// SignalsBlocked: threads that begin within a scope get no signals. They are for the host: one that
// waits for signals in a thread of its own must not lose them to ours.
#pragma once

#include <csignal>

namespace Quorvane {

class SignalsBlocked {
  public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    SignalsBlocked(SignalsBlocked const&) = delete;
    SignalsBlocked& operator=(SignalsBlocked const&) = delete;
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

  private:
    sigset_t m_before{};
};

} // namespace Quorvane
