// SPDX-License-Identifier: Apache-2.0
#include "apps/show/PageServer.h"

#include "apps/show/HttpServer.h"
#include "rules/model/RuleError.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace Quorvane::Show {

namespace {

constexpr char ownHost[] = "127.0.0.1";
constexpr char explainPath[] = "/explain";

namespace Status {
constexpr int noContent = 204;
constexpr int badRequest = 400;
constexpr int forbidden = 403;
constexpr int notFound = 404;
constexpr int badMethod = 405;
constexpr int tooLarge = 413;
constexpr int unsupportedType = 415;
constexpr int unprocessable = 422;
} // namespace Status

void s_refuse(httplib::Response& response, int status, std::string const& why) {
    response.status = status;
    response.set_content(why + '\n', "text/plain; charset=utf-8");
}

void s_refuseLength(httplib::Response& response) {
    s_refuse(response, Status::tooLarge,
             "a message has at most " + std::to_string(maxPostedMessage >> 20) + " MiB here");
}

// All but the body, which comes later.
PageQuestion s_question(httplib::Request const& request) {
    auto const query = std::min(request.target.find('?'), request.target.size() - 1) + 1;
    return {
        request.target.substr(query), request.get_header_value("Content-Type") == vectorType, {}};
}

} // namespace

struct PageServer::Server {
    Server(std::string page, Explain explain, int port)
        : m_page(std::move(page)), m_explain(std::move(explain)), m_port(bind(port)) {
        route();
    }

    int bind(int port) {
        auto const bound = port == 0                            ? m_http.bind_to_any_port(ownHost)
                           : m_http.bind_to_port(ownHost, port) ? port
                                                                : -1;
        if (bound < 0) {
            throw Rules::RuleError(Rules::RuleError::Kind::cannotWrite,
                                   "port " + std::to_string(port) +
                                       ": cannot be served on; give another, or none to take "
                                       "any that is free");
        }
        return bound;
    }

    void route() {
        using httplib::Request;
        using httplib::Response;
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
        m_http.Post(explainPath, [this](Request const& request, Response& response,
                                        httplib::ContentReader const& body) {
            readAndExplain(s_question(request), body, response);
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
        return request.method == "GET" || request.method == "HEAD" || isPost(request, response);
    }

    // Bodies that nobody asked for are refused before they are read.
    static bool isPost(httplib::Request const& request, httplib::Response& response) {
        if (request.method != "POST") {
            response.set_header("Allow", "GET, HEAD, POST");
            s_refuse(response, Status::badMethod, "this server knows GET, HEAD and POST");
            return false;
        }
        if (request.path != explainPath) {
            s_refuse(response, Status::notFound, std::string("post messages to ") + explainPath);
            return false;
        }
        return isMessage(request, response);
    }

    // The type is one that a foreign page cannot send without asking first. What is packed could
    // unpack to any size.
    static bool isMessage(httplib::Request const& request, httplib::Response& response) {
        auto const type = request.get_header_value("Content-Type");
        if ((type != messageType && type != vectorType) || request.has_header("Content-Encoding")) {
            s_refuse(response, Status::unsupportedType,
                     "post a message with Content-Type: message/rfc822, not encoded");
            return false;
        }
        if (request.get_header_value<std::uint64_t>("Content-Length") > maxPostedMessage) {
            s_refuseLength(response);
            return false;
        }
        return true;
    }

    // The library limits only bodies that tell their length.
    void readAndExplain(PageQuestion question, httplib::ContentReader const& body,
                        httplib::Response& response) const {
        auto& message = question.m_text;
        bool isTooLong = false;
        bool const isWhole = body([&](char const* bytes, std::size_t count) {
            isTooLong = count > maxPostedMessage - message.size();
            message.append(bytes, isTooLong ? 0 : count);
            return !isTooLong;
        });
        if (isTooLong) {
            s_refuseLength(response);
        } else if (!isWhole) {
            s_refuse(response, Status::badRequest, "the message broke off; post it again");
        } else {
            explain(question, response);
        }
    }

    void explain(PageQuestion const& question, httplib::Response& response) const {
        try {
            response.set_content(m_explain(question), "application/json");
        } catch (std::exception const& error) {
            s_refuse(response, Status::unprocessable, error.what());
        }
    }

    void run(Interrupt& interrupt) {
        std::thread serving([this] {
            m_http.listen_after_bind();
            m_end.say();
        });
        // A server that does not run yet cannot be stopped.
        while (!m_http.is_running() && !m_end.isSaid()) {
            std::this_thread::yield();
        }
        try {
            interrupt.waitForInput(m_end.descriptor());
        } catch (Interrupted const&) {
            // The usual end.
        }
        m_end.say();
        m_http.stop();
        serving.join();
    }

    std::string m_page;
    Explain m_explain;
    HttpServer m_http{maxPostedMessage, m_end};
    int m_port;
    ServerEnd m_end;
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
