// SPDX-License-Identifier: Apache-2.0
#include "apps/show/PageClient.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/rfc7230.hpp>
#include <boost/beast/http/write.hpp>
#include <chrono>
#include <limits>
#include <string_view>
#include <utility>

namespace Quorvane::Show {

namespace {

using boost::asio::ip::tcp;

// Far more than a browser of this machine needs.
constexpr std::chrono::seconds patience{10};
// Other servers of this machine leave their cookies to this one, too.
constexpr std::uint32_t maxHead = 32768;
// What is read ahead: a head fits, and so does the head of a chunk.
constexpr std::size_t maxBuffered = 65536;
constexpr std::string_view goOn = "HTTP/1.1 100 Continue\r\n\r\n";

// Whether the client sent something that is not HTTP, or broke off in the middle of it.
template<typename Error>
bool s_isMalformed(Error const& error) {
    return error.category() == make_error_code(Http::error::bad_method).category() &&
           error != Http::error::end_of_stream;
}

} // namespace

PageClient::PageClient(tcp::socket socket, PageAnswers const& answers,
                       boost::asio::thread_pool& explaining, std::function<void()> onEnd)
    : m_stream(std::move(socket)), m_answers(answers), m_explaining(explaining),
      m_onEnd(std::move(onEnd)), m_buffer(maxBuffered) {
    m_request.header_limit(maxHead);
    // Who asks matters more than how long the message is: that is looked at when the head is known.
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
        boost::asio::async_write(m_stream, boost::asio::buffer(goOn), then(&PageClient::readBody));
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
        answer(textAnswer(Http::status::bad_request, "the message broke off; post it again"));
    }
}

// Explaining asks name servers and takes its time: not in the thread that serves everybody.
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

} // namespace Quorvane::Show
