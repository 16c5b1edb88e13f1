// SPDX-License-Identifier: Apache-2.0
#include "support/SilentDnsServer.h"

#include <cctype>
#include <stdexcept>

namespace Quorvane::Testing {
namespace {

constexpr std::size_t s_headerLength = 12;

// The name in the question section (RFC 1035 section 4.1.2), which never is compressed.
std::string s_questionName(std::string const& packet) {
    std::string name;
    std::size_t at = s_headerLength;
    while (at < packet.size() && packet[at] != '\0') {
        auto const length = static_cast<unsigned char>(packet[at]);
        name += packet.substr(at + 1, length) + '.';
        at += length + 1U;
    }
    for (char& c : name) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return name;
}

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
        names.push_back(s_questionName(packet));
    }
}

std::vector<std::string> SilentDnsServer::takeQuestionsUntil(std::string const& name) {
    std::vector<std::string> names;
    while (names.empty() || names.back() != name) {
        std::string const packet = m_socket.receive(s_patience);
        if (packet.empty()) {
            throw std::runtime_error("nobody asks for " + name);
        }
        names.push_back(s_questionName(packet));
    }
    return names;
}

} // namespace Quorvane::Testing
