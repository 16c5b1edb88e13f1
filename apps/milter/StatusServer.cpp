// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/StatusServer.h"

#include "apps/settings/SettingValue.h"
#include "platform/IPAddress.h"

#include <boost/asio/io_context.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http.hpp>
#include <boost/system/system_error.hpp>
#include <chrono>
#include <thread>
#include <utility>

namespace Quorvane::Milter {

namespace {

namespace Http = boost::beast::http;
using boost::asio::ip::tcp;
using Request = Http::request<Http::empty_body>;
using Answer = Http::response<Http::string_body>;

constexpr std::chrono::seconds patience{5};

Answer s_answer(Http::status status, std::string text) {
    Answer answer(status, 11, std::move(text));
    answer.set(Http::field::content_type, "text/plain; version=0.0.4; charset=utf-8");
    answer.set(Http::field::cache_control, "no-store");
    answer.keep_alive(false);
    answer.prepare_payload();
    return answer;
}

Answer s_answerTo(Request const& request, StatusServer::Pages const& pages) {
    if (request.method() != Http::verb::get) {
        return s_answer(Http::status::method_not_allowed, "this server knows GET\n");
    }
    if (request.target() == "/metrics") {
        return s_answer(Http::status::ok, pages.m_metrics());
    }
    if (request.target() == "/health") {
        auto const health = pages.m_health();
        return s_answer(health == "ok" ? Http::status::ok : Http::status::service_unavailable,
                        health + '\n');
    }
    return s_answer(Http::status::not_found, "there are /metrics and /health\n");
}

// One client: a request, an answer, the end. It keeps itself alive until then.
class StatusClient : public std::enable_shared_from_this<StatusClient> {
  public:
    StatusClient(tcp::socket socket, StatusServer::Pages const& pages)
        : m_stream(std::move(socket)), m_pages(pages) {}

    void start() {
        m_stream.expires_after(patience);
        Http::async_read(m_stream, m_buffer, m_request,
                         [self = shared_from_this()](boost::system::error_code error, std::size_t) {
                             if (!error) {
                                 self->answer();
                             }
                         });
    }

  private:
    void answer() {
        m_answer = s_answerTo(m_request, m_pages);
        m_stream.expires_after(patience);
        Http::async_write(m_stream, m_answer,
                          [self = shared_from_this()](boost::system::error_code, std::size_t) {
                              boost::system::error_code ignored;
                              self->m_stream.socket().shutdown(tcp::socket::shutdown_send, ignored);
                          });
    }

    boost::beast::tcp_stream m_stream;
    StatusServer::Pages const& m_pages;
    boost::beast::flat_buffer m_buffer{8192};
    Request m_request;
    Answer m_answer;
};

tcp::acceptor s_listen(boost::asio::io_context& io, StatusAddress const& address) {
    try {
        return {io, tcp::endpoint(boost::asio::ip::make_address(address.m_host), address.m_port),
                true};
    } catch (boost::system::system_error const& error) {
        throw SettingsError("metrics: " + address.m_host + " port " +
                            std::to_string(address.m_port) +
                            " cannot be served on: " + error.code().message());
    }
}

} // namespace

StatusAddress StatusAddress::parse(std::string const& text) {
    auto const colon = text.rfind(':');
    auto host = colon == std::string::npos ? "" : text.substr(0, colon);
    if (host.starts_with('[') && host.ends_with(']')) {
        host = host.substr(1, host.size() - 2);
    }
    boost::system::error_code error;
    if (!boost::asio::ip::make_address(host, error).is_loopback() || error) {
        throw SettingsError("\"" + text +
                            "\" is not an address of this machine alone; write one as in "
                            "127.0.0.1:9465 or [::1]:9465");
    }
    return {host, static_cast<std::uint16_t>(readInteger(text.substr(colon + 1), 1, 65535))};
}

struct StatusServer::Server {
    Server(StatusAddress const& address, Pages pages)
        : m_pages(std::move(pages)), m_acceptor(s_listen(m_io, address)) {
        accept();
        m_thread = std::thread([this] { m_io.run(); });
    }

    ~Server() {
        m_io.stop();
        m_thread.join();
    }

    void accept() {
        m_acceptor.async_accept([this](boost::system::error_code error, tcp::socket socket) {
            if (!error) {
                std::make_shared<StatusClient>(std::move(socket), m_pages)->start();
            }
            accept();
        });
    }

    Pages m_pages;
    boost::asio::io_context m_io;
    tcp::acceptor m_acceptor;
    std::thread m_thread;
};

StatusServer::StatusServer(StatusAddress const& address, Pages pages)
    : m_server(std::make_unique<Server>(address, std::move(pages))) {}

StatusServer::~StatusServer() = default;

} // namespace Quorvane::Milter
