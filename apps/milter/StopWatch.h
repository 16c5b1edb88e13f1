// SPDX-License-Identifier: Apache-2.0
//
// StopWatch: ends the process when libmilter cannot. When it has been told to stop, it destroys a
// lock that its threads may still use, and when a mail server connects just then, its main loop can
// wait for that lock forever. The service manager would have to kill the daemon.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace Quorvane::Milter {

class StopWatch {
  public:
    // `end` ends the process. It is called, on a thread of this object's own, when libmilter has
    // been told to stop and its main loop has not returned after a while.
    explicit StopWatch(std::function<void()> end);
    StopWatch(StopWatch const&) = delete;
    StopWatch& operator=(StopWatch const&) = delete;
    // The main loop has returned.
    ~StopWatch();

  private:
    void run();

    std::function<void()> m_end;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_hasReturned = false;
    std::thread m_thread;
};

} // namespace Quorvane::Milter
