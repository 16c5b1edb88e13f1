// SPDX-License-Identifier: Apache-2.0
//
// LoopbackSocket: a socket bound to a loopback address, owned. Errors are std::system_error.
#pragma once

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <netinet/in.h>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace Quorvane::Testing {

class LoopbackSocket {
  public:
    // `type` SOCK_DGRAM or SOCK_STREAM; port 0 takes a free one.
    LoopbackSocket(int type, int port, char const* host = "127.0.0.1")
        : m_socket(socket(AF_INET, type | SOCK_CLOEXEC, 0)) {
        sockaddr_in const address = loopback(port, host);
        if (bind(m_socket, reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0) {
            int const error = errno;
            close(m_socket);
            throw std::system_error(error, std::generic_category(), std::string("bind to ") + host);
        }
    }
    LoopbackSocket(LoopbackSocket const&) = delete;
    LoopbackSocket& operator=(LoopbackSocket const&) = delete;
    ~LoopbackSocket() { close(m_socket); }

    int port() const {
        sockaddr_in address{};
        socklen_t length = sizeof address;
        getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &length);
        return ntohs(address.sin_port);
    }

    void sendTo(int port, std::string const& packet) const {
        sockaddr_in const address = loopback(port, "127.0.0.1");
        sendto(m_socket, packet.data(), packet.size(), 0,
               reinterpret_cast<sockaddr const*>(&address), sizeof address);
    }

    // The next packet; empty when none came in time.
    std::string receive(std::chrono::milliseconds patience) const {
        return receiveFrom(patience).m_bytes;
    }

    struct Packet {
        std::string m_bytes; // empty when none came in time
        int m_port = 0;      // of who sent it
    };
    Packet receiveFrom(std::chrono::milliseconds patience) const {
        pollfd readable{m_socket, POLLIN, 0};
        Packet packet{std::string(65536, '\0')};
        sockaddr_in sender{};
        socklen_t senderLength = sizeof sender;
        ssize_t length = 0;
        if (poll(&readable, 1, static_cast<int>(patience.count())) == 1) {
            length = recvfrom(m_socket, packet.m_bytes.data(), packet.m_bytes.size(), 0,
                              reinterpret_cast<sockaddr*>(&sender), &senderLength);
        }
        packet.m_bytes.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
        packet.m_port = ntohs(sender.sin_port);
        return packet;
    }

  private:
    static sockaddr_in loopback(int port, char const* host) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        inet_pton(AF_INET, host, &address.sin_addr);
        return address;
    }

    int m_socket;
};

} // namespace Quorvane::Testing
