// SPDX-License-Identifier: Apache-2.0
//
// SilentDnsServer: takes questions on a loopback port and never answers, like a server after
// a broken firewall. It remembers what it was asked.
#pragma once

#include "support/LoopbackSocket.h"

#include <string>
#include <vector>

namespace Quorvane::Testing {

class SilentDnsServer {
  public:
    // On a free port.
    SilentDnsServer() : m_socket(SOCK_DGRAM, 0) {}
    // Throws std::system_error when the port is not to be had.
    SilentDnsServer(char const* address, int port) : m_socket(SOCK_DGRAM, port, address) {}

    // As resolver settings name a server: "127.0.0.1@12345". REQUIRES: made on a free port.
    std::string address() const;

    // The names, lower-cased, of the questions that have arrived since the last call.
    std::vector<std::string> takeQuestions();

    // The same, waiting until a question for `name` ("mail.example.test.") has come. Throws
    // std::runtime_error when it never does.
    std::vector<std::string> takeQuestionsUntil(std::string const& name);

  private:
    LoopbackSocket m_socket;
};

} // namespace Quorvane::Testing
