// SPDX-License-Identifier: Apache-2.0
//
// Interrupt: turns SIGINT and SIGTERM into a state that can be queried and waited for, so that a
// program ends cleanly: it stops what it has begun and writes what is done. A second signal ends
// the program at once, whatever it does.
//
// Construct it before any other thread: threads inherit the blocked signals. Safe to ask from many
// threads.
#pragma once

#include "apps/input/InputWait.h"

#include <atomic>
#include <exception>
#include <stop_token>
#include <thread>

namespace Quorvane {

// Thrown by a read that a signal interrupts.
class Interrupted : public std::exception {
  public:
    char const* what() const noexcept override { return "interrupted"; }
};

class Interrupt : public InputWait {
  public:
    // A std::system_error when no descriptors are left; the program is then meant to end.
    Interrupt();
    Interrupt(Interrupt const&) = delete;
    Interrupt& operator=(Interrupt const&) = delete;
    // The signals have their usual effect again.
    ~Interrupt() override;

    // Waits until a signal comes.
    void wait() const;
    // Waits until `descriptor` can be read; throws Interrupted when a signal came first.
    void waitForInput(int descriptor) const override;

    // The number of the signal that came; 0: none.
    int signalNumber() const { return m_signal; }
    // Stop is requested when a signal comes, on a thread of this object's own.
    std::stop_token token() const { return m_stop.get_token(); }

  private:
    void watch();

    int m_signals; // delivers the signals
    int m_came;    // readable once a signal has come
    int m_end;     // readable once the object ends
    std::atomic<int> m_signal{0};
    std::stop_source m_stop;
    std::thread m_watch;
};

} // namespace Quorvane
