// SPDX-License-Identifier: Apache-2.0
//
// HttpServer: the library's server as a PageServer runs it. One request a connection, many clients
// at once and each for a limited time (Connection.h), answers that browsers neither keep nor show
// inside of other pages.
//
// ServerEnd: a descriptor that can be read once the server ends. Safe to use from many threads.
//
// The library compiles slowly: only PageServer.cpp and the files of these classes include it.
#pragma once

#include <atomic>
#include <cstddef>
#include <httplib.h>

namespace Quorvane::Show {

class ServerEnd {
  public:
    // A std::system_error when the process has no descriptor left.
    ServerEnd();
    ServerEnd(ServerEnd const&) = delete;
    ServerEnd& operator=(ServerEnd const&) = delete;
    ~ServerEnd();

    void say();
    bool isSaid() const { return m_isSaid; }
    int descriptor() const { return m_descriptor; }

  private:
    int m_descriptor;
    std::atomic<bool> m_isSaid{false};
};

class HttpServer : public httplib::Server {
  public:
    // `maxBody`: bytes that a request may carry. `end` is used while the server runs.
    HttpServer(std::size_t maxBody, ServerEnd const& end);

  private:
    bool process_and_close_socket(socket_t socket) override;

    // All that a client may send: a body, the heads of its chunks, the head of the request.
    std::size_t m_maxReceived;
    ServerEnd const& m_end;
};

} // namespace Quorvane::Show
