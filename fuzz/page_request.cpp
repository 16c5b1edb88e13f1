// SPDX-License-Identifier: Apache-2.0
//
// Reads arbitrary bytes as a request to the server of a page, and answers it as the server does,
// with the default rules. Only requests that name this server get an answer that is not a refusal,
// and a message that is posted is explained or refused, never the reason of a failed scan.
#include "apps/host/RuleLoader.h"
#include "apps/show/MessageExplainer.h"
#include "apps/show/PageAnswers.h"
#include "Check.h"
#include "platform/File.h"
#include "rules/model/RuleFolder.h"

#include <boost/asio/buffer.hpp>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

using namespace Quorvane;
using namespace Quorvane::Show;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

constexpr int port = 8080;
constexpr char secret[] = "5ec2e7";
constexpr char pageText[] = "<p>the page</p>";

MessageExplainer s_makeExplainer() {
    HostSettings settings;
    settings.m_dns = "off";
    auto const folder = std::string(QV_DEFAULT_ROOT) + ruleDirectory;
    return {settings, loadedRules(Rules::readFolder(folder)), MessageFacts()};
}

std::string s_explain(PageQuestion const& question) {
    static auto const s_explainer = s_makeExplainer();
    auto text = s_explainer.answer(question);
    auto const record = nlohmann::json::parse(text);
    check(record.contains("verdict") && !record.contains("error"), "no message makes a scan fail");
    return text;
}

void s_checkAnswer(PageRequest const& request, Answer const& answer) {
    auto const host = request.get()[Http::field::host];
    bool const isOurs = host == "127.0.0.1:8080" || host == "localhost:8080";
    check(isOurs || answer.result() == Http::status::forbidden, "other hosts are refused");
    bool const hasSecret = request.get().target().starts_with("/5ec2e7/");
    check(hasSecret || answer.result() != Http::status::ok, "without the secret there is nothing");
    check(answer.result() != Http::status::ok || answer["X-Frame-Options"] == "DENY",
          "no other page can show an answer");
    check(answer.body() != pageText || request.get().method() == Http::verb::get,
          "only GET gives the page");
}

// Reads as much as the parser takes; false when it is no request.
bool s_put(PageRequest& request, std::string_view& bytes, bool isWhole) {
    while (!bytes.empty() && !(isWhole ? request.is_done() : request.is_header_done())) {
        boost::beast::error_code error;
        auto const taken = request.put(boost::asio::buffer(bytes.data(), bytes.size()), error);
        bytes.remove_prefix(taken);
        if (error || taken == 0) {
            return false;
        }
    }
    return isWhole ? request.is_done() : request.is_header_done();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static PageAnswers const s_answers(pageText, s_explain, port, secret);
    std::string_view bytes(reinterpret_cast<char const*>(data), size);
    PageRequest request;
    if (!s_put(request, bytes, false)) {
        return 0;
    }
    if (auto const answer = s_answers.toHead(request)) {
        s_checkAnswer(request, *answer);
        return 0;
    }
    request.body_limit(maxPostedMessage);
    if (s_put(request, bytes, true)) {
        check(request.get().method() == Http::verb::post, "only what is posted is explained");
        s_checkAnswer(request, s_answers.explanation(request));
    }
    return 0;
}
