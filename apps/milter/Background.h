// SPDX-License-Identifier: Apache-2.0
//
// Background: a daemon that leaves the terminal. The program that was started waits until the
// daemon serves, so that its exit status and its messages are those of the start.
#pragma once

namespace Quorvane::Milter {

class Background {
  public:
    // With `foreground` nothing happens. Else the caller goes on as the daemon, in a process of its
    // own; the program that was started ends with the daemon's exit status if that ends before
    // ready is called, and with 0 after. Call it before there are threads.
    explicit Background(bool foreground);
    Background(Background const&) = delete;
    Background& operator=(Background const&) = delete;
    ~Background();

    // The daemon serves: lets go of the terminal.
    void ready();

  private:
    int m_pipe = -1;
};

} // namespace Quorvane::Milter
