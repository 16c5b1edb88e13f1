// SPDX-License-Identifier: Apache-2.0
//
// PageClient: one connection to a PageServer, one request and its answer. Owns the socket, and
// lives as long as the connection.
//
// A client has a limited time to send its request, all in all, and the same again to take its
// answer. A limit for the time between two bytes would not do: a client that sends one now and then
// would stay for ever.
#pragma once

#include "apps/show/PageAnswers.h"

#include <array>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <functional>
#include <memory>

namespace Quorvane::Show {

// All but explaining happens in the thread that runs the socket's context.
class PageClient : public std::enable_shared_from_this<PageClient> {
  public:
    // `onEnd` is called when the connection has ended.
    PageClient(boost::asio::ip::tcp::socket socket, PageAnswers const& answers,
               boost::asio::thread_pool& explaining, std::function<void()> onEnd);
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

} // namespace Quorvane::Show
