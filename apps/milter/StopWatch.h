// SPDX-License-Identifier: Apache-2.0
//
// StopWatch: sees to it that libmilter ends when it has been told to stop. Its main loop looks for
// that only when somebody connects, or every 5 seconds: the watch connects. And it ends the process
// when libmilter cannot: when it has been told to stop, it destroys a lock that its threads may
// still use, and when a mail server connects just then, its main loop can wait for that lock
// forever. The service manager would have to kill the daemon.
#pragma once

#include "apps/milter/WakeUpCall.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace Quorvane::Milter {

class StopWatch {
  public:
    // `place`: where libmilter listens. `end` ends the process. It is called, on a thread of this
    // object's own, when libmilter has been told to stop and its main loop has not returned after a
    // while.
    StopWatch(ListenPlace const& place, std::function<void()> end);
    StopWatch(StopWatch const&) = delete;
    StopWatch& operator=(StopWatch const&) = delete;
    // The main loop has returned.
    ~StopWatch();

  private:
    void run();

    ListenPlace m_place;
    std::function<void()> m_end;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_hasReturned = false;
    std::thread m_thread;
};

} // namespace Quorvane::Milter
