// SPDX-License-Identifier: Apache-2.0
//
// The only file that includes the library of the server: it compiles slowly.
#include "apps/show/PageServer.h"

#include "rules/model/RuleError.h"

#include <atomic>
#include <httplib.h>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace Quorvane::Show {

namespace {

constexpr char ownHost[] = "127.0.0.1";

namespace Status {
constexpr int noContent = 204;
constexpr int forbidden = 403;
constexpr int unsupportedType = 415;
constexpr int unprocessable = 422;
} // namespace Status

void s_refuse(httplib::Response& response, int status, std::string const& why) {
    response.status = status;
    response.set_content(why + '\n', "text/plain; charset=utf-8");
}

// Two programs on one port would answer in turns; only a port that is left may be taken.
void s_setOptions(socket_t socket) {
    int const yes = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

// A descriptor that says that the server ended.
class Ended {
  public:
    Ended() : m_descriptor(::eventfd(0, EFD_CLOEXEC)) {}
    Ended(Ended const&) = delete;
    Ended& operator=(Ended const&) = delete;
    ~Ended() { ::close(m_descriptor); }

    void say() {
        m_isSaid = true;
        ::eventfd_write(m_descriptor, 1);
    }
    bool isSaid() const { return m_isSaid; }
    int descriptor() const { return m_descriptor; }

  private:
    int m_descriptor;
    std::atomic<bool> m_isSaid{false};
};

} // namespace

struct PageServer::Server {
    Server(std::string page, Explain explain, int port)
        : m_page(std::move(page)), m_explain(std::move(explain)) {
        m_http.set_socket_options(s_setOptions);
        m_http.set_payload_max_length(maxPostedMessage);
        m_http.set_keep_alive_timeout(1); // seconds; the end waits for idle connections
        m_port = port == 0                            ? m_http.bind_to_any_port(ownHost)
                 : m_http.bind_to_port(ownHost, port) ? port
                                                      : -1;
        if (m_port < 0) {
            throw Rules::RuleError(Rules::RuleError::Kind::cannotWrite,
                                   "port " + std::to_string(port) +
                                       ": cannot be served on; give another, or none to take "
                                       "any that is free");
        }
        route();
    }

    void route() {
        using httplib::Request;
        using httplib::Response;
        m_http.set_default_headers({{"Cache-Control", "no-store"},
                                    {"X-Content-Type-Options", "nosniff"},
                                    {"X-Frame-Options", "DENY"},
                                    {"Cross-Origin-Resource-Policy", "same-origin"}});
        m_http.set_pre_routing_handler([this](Request const& request, Response& response) {
            return isAllowed(request, response) ? httplib::Server::HandlerResponse::Unhandled
                                                : httplib::Server::HandlerResponse::Handled;
        });
        m_http.Get("/", [this](Request const& /*request*/, Response& response) {
            response.set_content(m_page, "text/html; charset=utf-8");
        });
        // Browsers ask for it by themselves.
        m_http.Get("/favicon.ico", [](Request const& /*request*/, Response& response) {
            response.status = Status::noContent;
        });
        m_http.Post("/explain", [this](Request const& request, Response& response) {
            explain(request.body, response);
        });
    }

    bool isAllowed(httplib::Request const& request, httplib::Response& response) const {
        auto const host = request.get_header_value("Host");
        auto const port = ':' + std::to_string(m_port);
        if (host != ownHost + port && host != "localhost" + port) {
            s_refuse(response, Status::forbidden, "this server is " + std::string(ownHost) + port);
            return false;
        }
        if (request.has_header("Origin") &&
            request.get_header_value("Origin") != "http://" + host) {
            s_refuse(response, Status::forbidden, "other pages may not ask here");
            return false;
        }
        return request.method != "POST" || isMessage(request, response);
    }

    // The type is one that a foreign page cannot send without asking first. What is packed could
    // unpack to any size.
    static bool isMessage(httplib::Request const& request, httplib::Response& response) {
        if (request.get_header_value("Content-Type") != "message/rfc822" ||
            request.has_header("Content-Encoding")) {
            s_refuse(response, Status::unsupportedType,
                     "post a message with Content-Type: message/rfc822, not encoded");
            return false;
        }
        return true;
    }

    void explain(std::string const& message, httplib::Response& response) const {
        try {
            response.set_content(m_explain(message), "application/json");
        } catch (std::exception const& error) {
            s_refuse(response, Status::unprocessable, error.what());
        }
    }

    void run(Interrupt& interrupt) {
        Ended ended;
        std::thread serving([this, &ended] {
            m_http.listen_after_bind();
            ended.say();
        });
        // A server that does not run yet cannot be stopped.
        while (!m_http.is_running() && !ended.isSaid()) {
            std::this_thread::yield();
        }
        try {
            interrupt.waitForInput(ended.descriptor());
        } catch (Interrupted const&) {
            // The usual end.
        }
        m_http.stop();
        serving.join();
    }

    std::string m_page;
    Explain m_explain;
    httplib::Server m_http;
    int m_port = 0;
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
