// SPDX-License-Identifier: Apache-2.0
//
// LateDnsServer: a DNS server on a loopback port that knows every name, and takes its time. Every
// name has the address 192.0.2.7 and nothing else. It answers on a thread of its own from the
// constructor's return to the destructor.
#pragma once

#include "support/LoopbackSocket.h"

#include <atomic>
#include <chrono>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace Quorvane::Testing {

class LateDnsServer {
  public:
    // Answers each question `delay` after it came, and none before each of the names in `awaited`
    // ("mail.example.test.") was asked for. Port 0 takes a free one.
    explicit LateDnsServer(std::chrono::milliseconds delay, std::set<std::string> awaited = {},
                           int port = 0);
    LateDnsServer(LateDnsServer const&) = delete;
    LateDnsServer& operator=(LateDnsServer const&) = delete;
    ~LateDnsServer();

    // As resolver settings name a server: "127.0.0.1@12345".
    std::string address() const;
    // The names, lower-cased, that were asked for so far, each once.
    std::set<std::string> names() const;

  private:
    struct Question {
        std::string m_packet;
        int m_port;
        std::chrono::steady_clock::time_point m_due;
    };

    void run();
    void take(LoopbackSocket::Packet packet);
    void answerWhatIsDue();
    std::chrono::milliseconds untilDue() const;

    LoopbackSocket m_socket;
    std::chrono::milliseconds m_delay;
    std::set<std::string> m_awaited; // of these, the ones not asked for yet
    std::vector<Question> m_waiting; // in the order of their due times
    mutable std::mutex m_mutex;      // guards m_names
    std::set<std::string> m_names;
    std::atomic<bool> m_isEnding{false};
    std::thread m_thread;
};

} // namespace Quorvane::Testing
