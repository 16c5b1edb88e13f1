// SPDX-License-Identifier: Apache-2.0
#include "apps/show/Connection.h"

#include <algorithm>
#include <array>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Quorvane::Show {

Connection::Connection(int socket, int end, std::size_t maxReceived)
    : m_socket(socket), m_end(end), m_room(maxReceived) {}

Connection::~Connection() {
    ::shutdown(m_socket, SHUT_WR);
    std::array<char, 65536> forgotten{};
    while (Connection::read(forgotten.data(), forgotten.size()) > 0) {
    }
    ::close(m_socket);
}

bool Connection::is_readable() const {
    return poll(POLLIN, 0) != 0;
}

bool Connection::is_writable() const {
    return poll(POLLOUT, 0) != 0;
}

ssize_t Connection::read(char* bytes, std::size_t size) {
    size = std::min(size, m_room);
    if (size == 0 || !waitFor(POLLIN)) {
        return -1;
    }
    auto const count = ::recv(m_socket, bytes, size, MSG_DONTWAIT);
    if (count > 0) {
        m_room -= static_cast<std::size_t>(count);
    }
    return count;
}

ssize_t Connection::write(char const* bytes, std::size_t size) {
    return waitFor(POLLOUT) ? ::send(m_socket, bytes, size, MSG_DONTWAIT | MSG_NOSIGNAL) : -1;
}

void Connection::get_remote_ip_and_port(std::string& /*address*/, int& /*port*/) const {}

void Connection::get_local_ip_and_port(std::string& /*address*/, int& /*port*/) const {}

bool Connection::waitFor(short events) {
    using std::chrono::steady_clock;
    auto const left = std::chrono::ceil<std::chrono::milliseconds>(m_patience);
    auto const start = steady_clock::now();
    bool const isReady = poll(events, static_cast<int>(std::max<long>(left.count(), 0))) != 0;
    m_patience -= steady_clock::now() - start;
    return isReady;
}

int Connection::poll(short events, int milliseconds) const {
    std::array<pollfd, 2> waiting{{{m_socket, events, 0}, {m_end, POLLIN, 0}}};
    bool const hasCome = ::poll(waiting.data(), waiting.size(), milliseconds) > 0;
    return hasCome && waiting[1].revents == 0 ? waiting[0].revents : 0;
}

} // namespace Quorvane::Show
