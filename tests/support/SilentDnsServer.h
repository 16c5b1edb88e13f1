// SPDX-License-Identifier: Apache-2.0
//
// SilentDnsServer: takes questions on a free loopback port and never answers, like a server behind
// a broken firewall. It remembers what it was asked.
#pragma once

#include "support/LoopbackSocket.h"

#include <string>
#include <vector>

namespace Quorvane::Testing {

class SilentDnsServer {
  public:
    SilentDnsServer() : m_socket(SOCK_DGRAM, 0) {}

    // As resolver settings name a server: "127.0.0.1@12345".
    std::string address() const;

    // The names, lower-cased, of the questions that have arrived since the last call.
    std::vector<std::string> takeQuestions();

  private:
    LoopbackSocket m_socket;
};

} // namespace Quorvane::Testing
