// SPDX-License-Identifier: Apache-2.0
//
// WakeUpCall: a connection of the process to its own listening socket, so that who waits there
// looks up. It says nothing and asks for nothing: to libmilter it is no session before it does.
#pragma once

#include <sys/socket.h>

namespace Quorvane::Milter {

// Where a socket listens, as the kernel writes it. The size 0: nowhere.
struct ListenPlace {
    sockaddr_storage m_address{};
    socklen_t m_size = 0;

    static ListenPlace of(int descriptor);
};

class WakeUpCall {
  public:
    // Returns at once. When nobody listens there, or too many others wait to be accepted, no call
    // is made.
    explicit WakeUpCall(ListenPlace const& place);
    WakeUpCall(WakeUpCall const&) = delete;
    WakeUpCall& operator=(WakeUpCall const&) = delete;
    // Hangs up. A TCP connection that is given up before it stands wakes nobody.
    ~WakeUpCall();

  private:
    int m_socket;
};

} // namespace Quorvane::Milter
