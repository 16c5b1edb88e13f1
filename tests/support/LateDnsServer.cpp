// SPDX-License-Identifier: Apache-2.0
#include "support/LateDnsServer.h"

#include "support/DnsAnswer.h"

#include <algorithm>
#include <utility>

namespace Quorvane::Testing {
namespace {

using Clock = std::chrono::steady_clock;

} // namespace

LateDnsServer::LateDnsServer(std::chrono::milliseconds delay, std::set<std::string> awaited,
                             int port)
    : m_socket(SOCK_DGRAM, port), m_delay(delay), m_awaited(std::move(awaited)),
      m_thread(&LateDnsServer::run, this) {}

LateDnsServer::~LateDnsServer() {
    m_isEnding = true;
    m_socket.sendTo(m_socket.port(), "end"); // wakes the thread
    m_thread.join();
}

std::string LateDnsServer::address() const {
    return "127.0.0.1@" + std::to_string(m_socket.port());
}

std::set<std::string> LateDnsServer::names() const {
    std::lock_guard const lock(m_mutex);
    return m_names;
}

void LateDnsServer::run() {
    while (!m_isEnding) {
        take(m_socket.receiveFrom(untilDue()));
        answerWhatIsDue();
    }
}

void LateDnsServer::take(LoopbackSocket::Packet packet) {
    if (questionEnd(packet.m_bytes) == 0) {
        return;
    }
    auto const name = questionName(packet.m_bytes);
    m_awaited.erase(name);
    m_waiting.push_back({std::move(packet.m_bytes), packet.m_port, Clock::now() + m_delay});
    std::lock_guard const lock(m_mutex);
    m_names.insert(name);
}

void LateDnsServer::answerWhatIsDue() {
    auto const now = Clock::now();
    auto const end =
        m_awaited.empty()
            ? std::find_if(m_waiting.begin(), m_waiting.end(),
                           [now](Question const& question) { return question.m_due > now; })
            : m_waiting.begin();
    for (auto question = m_waiting.begin(); question != end; ++question) {
        m_socket.sendTo(question->m_port, addressAnswer(question->m_packet));
    }
    m_waiting.erase(m_waiting.begin(), end);
}

// How long there is nothing to do, rounded up; a second when nothing waits.
std::chrono::milliseconds LateDnsServer::untilDue() const {
    constexpr std::chrono::milliseconds idle{1000};
    if (m_waiting.empty() || !m_awaited.empty()) {
        return idle;
    }
    auto const left =
        std::chrono::ceil<std::chrono::milliseconds>(m_waiting.front().m_due - Clock::now());
    return std::clamp(left, std::chrono::milliseconds{0}, idle);
}

} // namespace Quorvane::Testing
