// SPDX-License-Identifier: Apache-2.0
//
// HostileDnsServer: a DNS server on a loopback port that answers names below "good.test" well and
// all others as a test wants. It answers on a thread of its own from the constructor's return to
// the destructor.
#pragma once

#include "support/LoopbackSocket.h"

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace Quorvane::Testing {

class HostileDnsServer {
  public:
    // The packets that are sent instead of the good answer; runs on the server's thread.
    using Replies = std::function<std::vector<std::string>(std::string const& answer)>;

    enum class When {
        atOnce,
        late, // not before the next good name was asked for
    };

    explicit HostileDnsServer(Replies replies, When when = When::atOnce);
    HostileDnsServer(HostileDnsServer const&) = delete;
    HostileDnsServer& operator=(HostileDnsServer const&) = delete;
    ~HostileDnsServer();

    // As resolver settings name a server: "127.0.0.1@12345".
    std::string address() const;
    // Questions for names that are not answered well.
    int badQuestions() const { return m_badQuestions; }

  private:
    void run();
    void take(LoopbackSocket::Packet const& packet);
    void sendLate();

    Replies m_replies;
    When m_when;
    LoopbackSocket m_socket;
    std::vector<LoopbackSocket::Packet> m_late; // and to whom
    std::atomic<int> m_badQuestions{0};
    std::atomic<bool> m_isEnding{false};
    std::thread m_thread;
};

} // namespace Quorvane::Testing
