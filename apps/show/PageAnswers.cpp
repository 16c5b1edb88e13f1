// SPDX-License-Identifier: Apache-2.0
#include "apps/show/PageAnswers.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace Quorvane::Show {

namespace {

using Http::field;
using Http::status;
using Http::verb;

constexpr char explainPath[] = "/explain";

// Browsers neither cache it nor show it inside other pages.
Answer s_answer(status status, char const* type, std::string text) {
    Answer answer(status, 11, std::move(text));
    answer.set(field::cache_control, "no-store");
    answer.set("X-Content-Type-Options", "nosniff");
    answer.set("X-Frame-Options", "DENY");
    answer.set("Cross-Origin-Resource-Policy", "same-origin");
    answer.set("Referrer-Policy", "no-referrer"); // it would hold the secret
    answer.set(field::content_type, type);
    answer.keep_alive(false);
    answer.prepare_payload();
    return answer;
}

// In a time that does not tell how much of it is right.
bool s_isSame(std::string_view given, std::string_view secret) {
    unsigned int difference = given.size() == secret.size() ? 0 : 1;
    for (std::size_t i = 0; i < std::min(given.size(), secret.size()); ++i) {
        difference |= static_cast<unsigned int>(given[i] ^ secret[i]);
    }
    return difference == 0;
}

// The type is one that a foreign page cannot send without asking first. A compressed body could
// have any size.
std::optional<Answer> s_refusedMessage(PageRequest const& request) {
    auto const& head = request.get();
    bool const isKnown =
        head[field::content_type] == messageType || head[field::content_type] == vectorType;
    if (!isKnown || head.count(field::content_encoding) != 0) {
        return textAnswer(status::unsupported_media_type,
                          "post a message with Content-Type: message/rfc822, not encoded");
    }
    auto const length = request.content_length();
    if (!length && !request.chunked()) {
        return textAnswer(status::length_required, "post a message with its Content-Length");
    }
    return length && *length > maxPostedMessage ? std::optional(tooLongAnswer()) : std::nullopt;
}

PageQuestion s_question(PageRequest::value_type const& request) {
    std::string const target(request.target());
    auto const query = target.find('?');
    return {query == std::string::npos ? "" : target.substr(query + 1),
            request[field::content_type] == vectorType, request.body()};
}

} // namespace

Answer textAnswer(status status, std::string const& line) {
    return s_answer(status, "text/plain; charset=utf-8", line + '\n');
}

Answer tooLongAnswer() {
    auto const most = std::to_string(maxPostedMessage >> 20);
    return textAnswer(status::payload_too_large, "a message may have at most " + most + " MiB");
}

PageAnswers::PageAnswers(std::string page, PageServer::Explain explain, int port,
                         std::string secret)
    : m_page(std::move(page)), m_explain(std::move(explain)), m_port(':' + std::to_string(port)),
      m_secret('/' + std::move(secret)) {}

std::optional<Answer> PageAnswers::toHead(PageRequest const& request) const {
    auto const& head = request.get();
    if (auto refusal = refusedSender(head)) {
        return refusal;
    }
    std::string_view const target(head.target().data(), head.target().size());
    auto const path = target.substr(0, target.find('?'));
    // Browsers ask for it by themselves.
    if (path == "/favicon.ico") {
        return Answer(status::no_content, 11);
    }
    if (!s_isSame(path.substr(0, m_secret.size()), m_secret)) {
        return textAnswer(status::forbidden,
                          "open the address that qvrules printed; it holds a secret");
    }
    return toPath(request, path.substr(m_secret.size()));
}

// Other hosts and other pages reach this server through the browser of its user.
std::optional<Answer> PageAnswers::refusedSender(PageRequest::value_type const& head) const {
    std::string const host(head[field::host]);
    if (host != ownHost + m_port && host != "localhost" + m_port) {
        return textAnswer(status::forbidden, "this server is " + (ownHost + m_port));
    }
    if (head.count(field::origin) != 0 && head[field::origin] != "http://" + host) {
        return textAnswer(status::forbidden, "requests of other pages are refused");
    }
    return std::nullopt;
}

std::optional<Answer> PageAnswers::toPath(PageRequest const& request, std::string_view path) const {
    auto const method = request.get().method();
    if (method == verb::post) {
        return path == explainPath
                   ? s_refusedMessage(request)
                   : textAnswer(status::not_found, "post messages to \"explain\" beside the page");
    }
    if (method == verb::get || method == verb::head) {
        auto answer = toGet(path);
        if (method == verb::head) {
            answer.body().clear(); // its length stays in the head
        }
        return answer;
    }
    auto answer = textAnswer(status::method_not_allowed, "this server takes GET, HEAD and POST");
    answer.set(field::allow, "GET, HEAD, POST");
    return answer;
}

Answer PageAnswers::toGet(std::string_view path) const {
    return path == "/" ? s_answer(status::ok, "text/html; charset=utf-8", m_page)
                       : textAnswer(status::not_found, "there is one page, at the address that "
                                                       "qvrules printed");
}

Answer PageAnswers::explanation(PageRequest const& request) const {
    try {
        return s_answer(status::ok, "application/json", m_explain(s_question(request.get())));
    } catch (std::exception const& error) {
        return textAnswer(status::unprocessable_entity, error.what());
    }
}

} // namespace Quorvane::Show
