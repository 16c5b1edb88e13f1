// SPDX-License-Identifier: Apache-2.0
//
// PageAnswers: which answers a PageServer gives, and to whom. Safe to use from many threads.
#pragma once

#include "apps/show/PageServer.h"

#include <boost/beast/http/message.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace Quorvane::Show {

namespace Http = boost::beast::http;

using PageRequest = Http::request_parser<Http::string_body>;
using Answer = Http::response<Http::string_body>;

inline constexpr char ownHost[] = "127.0.0.1";

// An answer of one line of text for people.
Answer textAnswer(Http::status status, std::string const& line);
Answer tooLongAnswer();

class PageAnswers {
  public:
    // `secret` is the first part of all paths.
    PageAnswers(std::string page, PageServer::Explain explain, int port, std::string secret);

    // The answer to a request of which the head has been read; empty when its body is to be read
    // and explained.
    std::optional<Answer> toHead(PageRequest const& request) const;
    // To a whole request.
    Answer explanation(PageRequest const& request) const;

  private:
    std::optional<Answer> refusedSender(PageRequest::value_type const& head) const;
    std::optional<Answer> toPath(PageRequest const& request, std::string_view path) const;
    Answer toGet(std::string_view path) const;

    std::string m_page;
    PageServer::Explain m_explain;
    std::string m_port;   // ":8080"
    std::string m_secret; // "/1f3a..."
};

} // namespace Quorvane::Show
