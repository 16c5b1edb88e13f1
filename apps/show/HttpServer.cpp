// SPDX-License-Identifier: Apache-2.0
#include "apps/show/HttpServer.h"

#include "apps/show/Connection.h"

#include <cerrno>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace Quorvane::Show {

namespace {

// Each has a thread while it lets us wait; further ones wait until one of them is done.
constexpr std::size_t clientsAtOnce = 128;

// Two programs on one port would answer in turns; only a port that is left may be taken.
void s_setOptions(socket_t socket) {
    int const yes = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

} // namespace

ServerEnd::ServerEnd() : m_descriptor(::eventfd(0, EFD_CLOEXEC)) {
    if (m_descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
}

ServerEnd::~ServerEnd() {
    ::close(m_descriptor);
}

void ServerEnd::say() {
    m_isSaid = true;
    ::eventfd_write(m_descriptor, 1);
}

HttpServer::HttpServer(std::size_t maxBody, ServerEnd const& end)
    : m_maxReceived(2 * maxBody), m_end(end) {
    new_task_queue = [] { return new httplib::ThreadPool(clientsAtOnce); };
    set_payload_max_length(maxBody);
    set_socket_options(s_setOptions);
    set_default_headers({{"Cache-Control", "no-store"},
                         {"X-Content-Type-Options", "nosniff"},
                         {"X-Frame-Options", "DENY"},
                         {"Cross-Origin-Resource-Policy", "same-origin"}});
}

// The next request of a client comes with a connection of its own: one that is kept open would hold
// a thread for nothing.
bool HttpServer::process_and_close_socket(socket_t socket) {
    Connection connection(socket, m_end.descriptor(), m_maxReceived);
    bool isClosed = false;
    return process_request(connection, true, isClosed, nullptr);
}

} // namespace Quorvane::Show
