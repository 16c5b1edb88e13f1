// SPDX-License-Identifier: Apache-2.0
#include "support/HostileDnsServer.h"

#include "support/DnsAnswer.h"

#include <utility>

namespace Quorvane::Testing {

HostileDnsServer::HostileDnsServer(Replies replies, When when)
    : m_replies(std::move(replies)), m_when(when), m_socket(SOCK_DGRAM, 0),
      m_thread(&HostileDnsServer::run, this) {}

HostileDnsServer::~HostileDnsServer() {
    m_isEnding = true;
    m_socket.sendTo(m_socket.port(), "end"); // wakes the thread
    m_thread.join();
}

std::string HostileDnsServer::address() const {
    return "127.0.0.1@" + std::to_string(m_socket.port());
}

void HostileDnsServer::run() {
    constexpr std::chrono::milliseconds untilWoken{1000};
    while (!m_isEnding) {
        take(m_socket.receiveFrom(untilWoken));
    }
}

void HostileDnsServer::take(LoopbackSocket::Packet const& packet) {
    if (questionEnd(packet.m_bytes) == 0) {
        return;
    }
    auto const answer = addressAnswer(packet.m_bytes);
    if (questionName(packet.m_bytes).ends_with("good.test.")) {
        sendLate();
        m_socket.sendTo(packet.m_port, answer);
        return;
    }
    ++m_badQuestions;
    for (auto const& reply : m_replies(answer)) {
        if (m_when == When::late) {
            m_late.push_back({reply, packet.m_port});
        } else {
            m_socket.sendTo(packet.m_port, reply);
        }
    }
}

void HostileDnsServer::sendLate() {
    for (auto const& packet : m_late) {
        m_socket.sendTo(packet.m_port, packet.m_bytes);
    }
    m_late.clear();
}

} // namespace Quorvane::Testing
