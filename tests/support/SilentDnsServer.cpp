// SPDX-License-Identifier: Apache-2.0
#include "support/SilentDnsServer.h"

#include "support/DnsQuestion.h"

#include <stdexcept>

namespace Quorvane::Testing {
namespace {

// Far longer than a question takes on a loaded machine.
constexpr std::chrono::seconds s_patience{60};

} // namespace

std::string SilentDnsServer::address() const {
    return "127.0.0.1@" + std::to_string(m_socket.port());
}

std::vector<std::string> SilentDnsServer::takeQuestions() {
    std::vector<std::string> names;
    for (;;) {
        std::string const packet = m_socket.receive(std::chrono::milliseconds{0});
        if (packet.empty()) {
            return names;
        }
        names.push_back(questionName(packet));
    }
}

std::vector<std::string> SilentDnsServer::takeQuestionsUntil(std::string const& name) {
    std::vector<std::string> names;
    while (names.empty() || names.back() != name) {
        std::string const packet = m_socket.receive(s_patience);
        if (packet.empty()) {
            throw std::runtime_error("nobody asks for " + name);
        }
        names.push_back(questionName(packet));
    }
    return names;
}

} // namespace Quorvane::Testing
