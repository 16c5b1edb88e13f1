// SPDX-License-Identifier: Apache-2.0
//
// Interrupt: turns SIGINT and SIGTERM into a state that can be queried, so that a program ends
// cleanly: it stops reading, and finishes and writes what it has begun. A second signal ends the
// program at once.
//
// Construct it before any other thread: threads inherit the blocked signals. Safe to ask from many
// threads.
#pragma once

#include <atomic>
#include <exception>

namespace Quorvane {

// Thrown by a read that a signal interrupts.
class Interrupted : public std::exception {
  public:
    char const* what() const noexcept override { return "interrupted"; }
};

class Interrupt {
  public:
    Interrupt();
    Interrupt(Interrupt const&) = delete;
    Interrupt& operator=(Interrupt const&) = delete;
    // The signals have their usual effect again.
    ~Interrupt();

    // Waits until a signal comes.
    void wait();
    // Waits until `descriptor` can be read; throws Interrupted when a signal came first.
    void waitForInput(int descriptor);

    // The number of the signal that came; 0: none.
    int signalNumber();

  private:
    void take();

    int m_descriptor;
    std::atomic<int> m_signal{0};
};

} // namespace Quorvane
