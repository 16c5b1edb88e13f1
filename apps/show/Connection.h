// SPDX-License-Identifier: Apache-2.0
//
// Connection: one client of a PageServer, as the stream that the server's library reads from and
// writes to. Owns the socket.
//
// The library limits the time between two bytes only, so a client that sends one now and then would
// hold a thread for ever, and with it the end of the program. Here each client has a limit for all
// the time that it lets us wait and for all that it sends; and an end of the server ends it at
// once. Reads and writes behind a limit fail. One object, one thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <httplib.h>
#include <string>

namespace Quorvane::Show {

// How long a client may let us wait, all in all; far more than a browser of this machine needs.
inline constexpr std::chrono::seconds clientPatience{10};

class Connection : public httplib::Stream {
  public:
    // Takes at most `maxReceived` bytes. `end` can be read once the server ends.
    Connection(int socket, int end, std::size_t maxReceived);
    Connection(Connection const&) = delete;
    Connection& operator=(Connection const&) = delete;
    // Reads and forgets what the client still sends: it would not see an answer otherwise.
    ~Connection() override;

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char* bytes, std::size_t size) override;
    ssize_t write(char const* bytes, std::size_t size) override;
    // The library would tell handlers, and none asks.
    void get_remote_ip_and_port(std::string& address, int& port) const override;
    void get_local_ip_and_port(std::string& address, int& port) const override;
    int socket() const override { return m_socket; }

  private:
    bool waitFor(short events);
    // What poll says of the socket; 0 when nothing came in time or the server ends.
    int poll(short events, int milliseconds) const;

    int m_socket;
    int m_end;
    std::size_t m_room;
    std::chrono::steady_clock::duration m_patience = clientPatience;
};

} // namespace Quorvane::Show
