// SPDX-License-Identifier: Apache-2.0
#include "apps/show/PageServer.h"

#include "apps/show/PageAnswers.h"
#include "rules/model/RuleError.h"

#include <array>
#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/rfc7230.hpp>
#include <boost/beast/http/write.hpp>
#include <boost/system/system_error.hpp>
#include <cerrno>
#include <chrono>
#include <limits>
#include <string_view>
#include <sys/random.h>
#include <system_error>
#include <thread>
#include <utility>

namespace Quorvane::Show {

namespace {

using boost::asio::ip::tcp;

// Further ones wait until one of them is done.
constexpr int clientsAtOnce = 128;
constexpr std::size_t explainedAtOnce = 16;
// When no descriptor is left for a client, there may be some after a while.
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

// Hexadecimal digits of 128 bits from the kernel: nobody finds them by trying.
std::string s_newSecret() {
    std::array<unsigned char, 16> bytes{};
    if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
        throw std::system_error(errno, std::generic_category(),
                                "no random bytes for the address of the page");
    }
    constexpr std::string_view digits = "0123456789abcdef";
    std::string secret;
    for (auto const byte : bytes) {
        secret += digits[byte >> 4U];
        secret += digits[byte & 15U];
    }
    return secret;
}

// Far more than a browser of this machine needs.
constexpr std::chrono::seconds patience{10};
// Browsers send the cookies of other servers of this machine, too.
constexpr std::uint32_t maxHead = 32768;
// Of what is read ahead: enough for a head, and for the head of a chunk.
constexpr std::size_t maxBuffered = 65536;
constexpr std::string_view proceed = "HTTP/1.1 100 Continue\r\n\r\n";

// Whether the client sent something that is not HTTP, or stopped in the middle of it.
template<typename Error>
bool s_isMalformed(Error const& error) {
    return error.category() == make_error_code(Http::error::bad_method).category() &&
           error != Http::error::end_of_stream;
}

// One connection, one request and its answer. All but explaining happens in the thread that runs
// the context of the socket.
//
// A client has a limited time to send its whole request, and the same again to read its answer. A
// limit for the time between two bytes would not be enough: a client that sends one now and then
// would stay forever.
class PageClient : public std::enable_shared_from_this<PageClient> {
  public:
    // `onEnd` is called when the connection has ended.
    PageClient(tcp::socket socket, PageAnswers const& answers, boost::asio::thread_pool& explaining,
               std::function<void()> onEnd);
    PageClient(PageClient const&) = delete;
    PageClient& operator=(PageClient const&) = delete;
    ~PageClient();

    void start();

  private:
    using Error = boost::beast::error_code;

    // What an operation calls when it is done; keeps the client alive until then.
    auto then(void (PageClient::*step)(Error)) {
        return [self = shared_from_this(), step](Error error, std::size_t /*size*/) {
            (*self.*step)(error);
        };
    }

    // The steps of an exchange, in order.
    void onHead(Error error);
    void readBody(Error error);
    void onBody(Error error);
    void explain();
    void answer(Answer answer);
    void onAnswered(Error error);
    void forget(Error error);

    boost::beast::tcp_stream m_stream;
    PageAnswers const& m_answers;
    boost::asio::thread_pool& m_explaining;
    std::function<void()> m_onEnd;
    boost::beast::flat_buffer m_buffer;
    PageRequest m_request;
    Answer m_answer;
    std::array<char, 65536> m_forgotten{};
};

PageClient::PageClient(tcp::socket socket, PageAnswers const& answers,
                       boost::asio::thread_pool& explaining, std::function<void()> onEnd)
    : m_stream(std::move(socket)), m_answers(answers), m_explaining(explaining),
      m_onEnd(std::move(onEnd)), m_buffer(maxBuffered) {
    m_request.header_limit(maxHead);
    // Who asks is checked before the length of the message, when the head is known.
    m_request.body_limit(std::numeric_limits<std::uint64_t>::max());
}

PageClient::~PageClient() {
    m_onEnd();
}

void PageClient::start() {
    m_stream.expires_after(patience);
    Http::async_read_header(m_stream, m_buffer, m_request, then(&PageClient::onHead));
}

void PageClient::onHead(Error error) {
    if (s_isMalformed(error)) {
        answer(textAnswer(Http::status::bad_request, "this is not an HTTP request"));
    }
    if (error) {
        return;
    }
    if (auto ready = m_answers.toHead(m_request)) {
        answer(std::move(*ready));
        return;
    }
    m_request.body_limit(maxPostedMessage);
    // Some clients wait to be asked for a body.
    if (boost::beast::iequals(m_request.get()[Http::field::expect], "100-continue")) {
        boost::asio::async_write(m_stream, boost::asio::buffer(proceed),
                                 then(&PageClient::readBody));
    } else {
        readBody({});
    }
}

void PageClient::readBody(Error error) {
    if (!error) {
        Http::async_read(m_stream, m_buffer, m_request, then(&PageClient::onBody));
    }
}

void PageClient::onBody(Error error) {
    if (!error) {
        explain();
    } else if (error == Http::error::body_limit) {
        answer(tooLongAnswer());
    } else if (s_isMalformed(error)) {
        answer(textAnswer(Http::status::bad_request, "the message is incomplete; post it again"));
    }
}

// Explaining waits for name servers, so it does not run in the thread that serves all clients.
void PageClient::explain() {
    boost::asio::post(m_explaining, [self = shared_from_this()]() mutable {
        auto explanation = self->m_answers.explanation(self->m_request);
        auto const executor = self->m_stream.get_executor();
        boost::asio::post(executor,
                          [self = std::move(self), answer = std::move(explanation)]() mutable {
                              self->answer(std::move(answer));
                          });
    });
}

void PageClient::answer(Answer answer) {
    m_answer = std::move(answer);
    m_stream.expires_after(patience);
    Http::async_write(m_stream, m_answer, then(&PageClient::onAnswered));
}

void PageClient::onAnswered(Error error) {
    if (!error) {
        m_stream.socket().shutdown(tcp::socket::shutdown_send, error);
    }
    forget(error);
}

// Reads and forgets what the client still sends: it would not see the answer otherwise.
void PageClient::forget(Error error) {
    if (!error) {
        m_stream.async_read_some(boost::asio::buffer(m_forgotten), then(&PageClient::forget));
    }
}

} // namespace

struct PageServer::Server {
    Server(std::string page, Explain explain, int port)
        : m_acceptor(s_listen(m_io, port)), m_port(m_acceptor.local_endpoint().port()),
          m_secret(s_newSecret()),
          m_answers(std::move(page), std::move(explain), m_port, m_secret) {
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

    // Clients that are still connected when the server ends are dropped.
    void leave() {
        if (m_clients-- == clientsAtOnce && !m_io.stopped()) {
            accept();
        }
    }

    // A request may need too much memory; the server continues with the next.
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
    std::string m_secret;
    PageAnswers m_answers;
    boost::asio::thread_pool m_explaining{explainedAtOnce};
};

PageServer::PageServer(std::string page, Explain explain, int port)
    : m_server(std::make_unique<Server>(std::move(page), std::move(explain), port)) {}

PageServer::~PageServer() = default;

std::string PageServer::address() const {
    return std::string("http://") + ownHost + ':' + std::to_string(m_server->m_port) + '/' +
           m_server->m_secret + '/';
}

void PageServer::run(Interrupt& interrupt) {
    m_server->run(interrupt);
}

} // namespace Quorvane::Show
