// SPDX-License-Identifier: Apache-2.0
//
// StatusServer: answers GET /metrics (Prometheus) and GET /health (200 or 503, and a line of text)
// over HTTP on a loopback address, on a thread of its own, until the object ends. Requests are
// short, and a client that says nothing for seconds is left.
#pragma once

#include "apps/milter/StatusAddress.h"

#include <functional>
#include <memory>
#include <string>

namespace Quorvane::Milter {

class StatusServer {
  public:
    struct Pages {
        std::function<std::string()> m_metrics;
        std::function<std::string()> m_health; // "ok", or what is wrong
    };

    // A SettingsError when the address is taken. The functions are called on the server's thread.
    StatusServer(StatusAddress const& address, Pages pages);
    StatusServer(StatusServer const&) = delete;
    StatusServer& operator=(StatusServer const&) = delete;
    ~StatusServer();

  private:
    struct Server;
    std::unique_ptr<Server> m_server;
};

} // namespace Quorvane::Milter
