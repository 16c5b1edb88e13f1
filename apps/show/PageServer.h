// SPDX-License-Identifier: Apache-2.0
//
// PageServer: a page for the browser of this machine, and one address that explains messages.
//
//   GET /SECRET/          the page
//   POST /SECRET/explain  the body a whole message (Content-Type message/rfc822) or an attribute
//                         vector (vectorType); answers the JSON record of it, or 4xx and a line of
//                         text for people. The address may name settings to judge with:
//                         explain?min-support=1
//
// It listens on 127.0.0.1 only. Every user of the machine can reach it there, so the address holds
// a secret, new for each server. Every web site that a user visits can reach it by the browser, so
// requests that name another host (rebound DNS names) or come from another page (Origin) are
// refused. The size of a body is limited while it arrives, and so is the time that a client may
// take: clients that stall delay others by seconds at most, and only when there are many, and no
// client can prevent the server from ending. One object, one thread; the server runs threads of its
// own.
#pragma once

#include "apps/input/Interrupt.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace Quorvane::Show {

// The body of the message is sent, too; mail servers rarely take a message of 25 MiB. Explaining
// keeps a few copies.
inline constexpr std::size_t maxPostedMessage = std::size_t{32} << 20;

// Types of what is posted. Unlike text/plain, no foreign page can send them without asking first
// (fetch.spec.whatwg.org, "CORS-safelisted request-header").
inline constexpr char messageType[] = "message/rfc822";
inline constexpr char vectorType[] = "text/x-attribute-vector";

// What a page asks about.
struct PageQuestion {
    std::string m_query; // of the address, what follows "?"
    bool m_isVector = false;
    std::string m_text;
};

class PageServer {
  public:
    // Called from many threads. A std::exception's text goes to the reader of the page.
    using Explain = std::function<std::string(PageQuestion const& question)>;

    // `port` 0: any that is free. A RuleError when the port is taken; another std::exception when
    // the process has no descriptor left.
    PageServer(std::string page, Explain explain, int port);
    PageServer(PageServer const&) = delete;
    PageServer& operator=(PageServer const&) = delete;
    ~PageServer();

    // "http://127.0.0.1:8080/SECRET/"
    std::string address() const;

    // Serves until SIGINT or SIGTERM.
    void run(Interrupt& interrupt);

  private:
    struct Server;
    std::unique_ptr<Server> m_server;
};

} // namespace Quorvane::Show
