// SPDX-License-Identifier: Apache-2.0
//
// Session: one connection of the mail server: what it says of the client and of one message after
// another, and what becomes of each. It knows nothing of libmilter; Callbacks.h translates.
//
// One thread at a time, but not always the same. Memory is bounded by the limits of the settings,
// whatever is sent.
#pragma once

#include "apps/milter/CurrentHop.h"
#include "apps/milter/Judgement.h"
#include "apps/milter/MailServer.h"
#include "apps/milter/Service.h"

#include <memory>
#include <string>

namespace Quorvane::Milter {

class Session {
  public:
    // It keeps the snapshot in force now. `service` outlives it.
    explicit Session(Service& service);
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;
    ~Session();

    void connect(MailServer& server, std::string const& hostName, IPAddress const& address);
    void helo(std::string const& name);
    // Begins a message.
    void envelopeFrom(MailServer& server, std::string const& address);
    void recipient(std::string const& address);
    // `value` as it stands in the message after the colon.
    void header(std::string const& name, std::string const& value);
    // Judges the message and does what the settings say. Throws nothing.
    Reply endOfMessage(MailServer& server);
    // Gives the memory of the message back; the next one begins afresh in any case.
    void abort();

  private:
    struct Message {
        std::string m_envelopeFrom;
        std::string m_recipient; // the first one
        std::string m_headers;
        std::size_t m_headerCount = 0;
        std::size_t m_hopCount = 0;
        bool m_isOdd = false; // beyond a limit
        bool m_isAuthenticated = false;
        // Headers named like ours.
        int m_foreignResults = 0;
        int m_foreignReasons = 0;
    };

    bool isExempt() const;
    bool removeForeign(MailServer& server) const;
    MessageFacts facts(MailServer& server, HeaderContainer const& headers) const;
    Judgement judge(MailServer& server) const;
    Reply apply(MailServer& server, Judgement const& judgement, Action const& action) const;
    Reply finish(MailServer& server);

    Service& m_service;
    std::shared_ptr<Snapshot const> m_snapshot;
    Client m_client;
    Message m_message;
};

} // namespace Quorvane::Milter
