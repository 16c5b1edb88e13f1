// SPDX-License-Identifier: Apache-2.0
#include "apps/show/PageServer.h"

#include "apps/show/PageClient.h"
#include "rules/model/RuleError.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/system/system_error.hpp>
#include <thread>
#include <utility>

namespace Quorvane::Show {

namespace {

using boost::asio::ip::tcp;

// Further ones wait until one of them is done.
constexpr int clientsAtOnce = 128;
constexpr std::size_t explainedAtOnce = 16;
// When no descriptor is left for a client, some may be in a while.
constexpr std::chrono::milliseconds acceptPause{100};

// Two programs on one port would answer in turns; only a port that is left may be taken.
tcp::acceptor s_listen(boost::asio::io_context& io, int port) {
    tcp::endpoint const endpoint(boost::asio::ip::make_address(ownHost),
                                 static_cast<std::uint16_t>(port));
    try {
        return {io, endpoint, true};
    } catch (boost::system::system_error const&) {
        throw Rules::RuleError(Rules::RuleError::Kind::cannotWrite,
                               "port " + std::to_string(port) +
                                   ": cannot be served on; give another, or none to take any that "
                                   "is free");
    }
}

} // namespace

struct PageServer::Server {
    Server(std::string page, Explain explain, int port)
        : m_acceptor(s_listen(m_io, port)), m_port(m_acceptor.local_endpoint().port()),
          m_answers(std::move(page), std::move(explain), m_port) {
        accept();
    }

    void accept() {
        m_acceptor.async_accept([this](boost::system::error_code error, tcp::socket socket) {
            if (error) {
                m_pause.expires_after(acceptPause);
                m_pause.async_wait([this](boost::system::error_code) { accept(); });
                return;
            }
            if (++m_clients < clientsAtOnce) {
                accept();
            }
            std::make_shared<PageClient>(std::move(socket), m_answers, m_explaining, [this] {
                leave();
            })->start();
        });
    }

    // Those that are still there when the server ends leave with it.
    void leave() {
        if (m_clients-- == clientsAtOnce && !m_io.stopped()) {
            accept();
        }
    }

    // One request may be too much for this machine; that is no reason to end.
    void serve() {
        while (!m_io.stopped()) {
            try {
                m_io.run();
            } catch (std::exception const&) {
                continue;
            }
        }
    }

    void run(Interrupt& interrupt) {
        std::thread serving([this] { serve(); });
        interrupt.wait();
        m_io.stop();
        serving.join();
        m_explaining.stop();
        m_explaining.join();
    }

    int m_clients = 0;
    boost::asio::io_context m_io;
    boost::asio::steady_timer m_pause{m_io};
    tcp::acceptor m_acceptor;
    int m_port;
    PageAnswers m_answers;
    boost::asio::thread_pool m_explaining{explainedAtOnce};
};

PageServer::PageServer(std::string page, Explain explain, int port)
    : m_server(std::make_unique<Server>(std::move(page), std::move(explain), port)) {}

PageServer::~PageServer() = default;

std::string PageServer::address() const {
    return std::string("http://") + ownHost + ':' + std::to_string(m_server->m_port) + '/';
}

void PageServer::run(Interrupt& interrupt) {
    m_server->run(interrupt);
}

} // namespace Quorvane::Show
