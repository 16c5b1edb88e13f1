// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/ReceivedShapes.h"

#include <algorithm>
#include <array>
#include <memory>
#include <re2/re2.h>
#include <vector>

namespace Quorvane::Rules {

namespace {

// The more specific shapes first: "([ADDR])" alone would fit Exim's comments too. HELO and ADDR
// stand for what is to be found.
constexpr std::string_view shapes[] = {
    // Exim: from name ([192.0.2.1] helo=pc) | ([192.0.2.1]:4711 ident=x helo=pc)
    R"re(from\s+[^\s()]+\s+\(\[ADDR\](?::\d+)?\s+(?:[^()]*\s)?helo=HELO[^()]*\))re",
    // Exim, no name: from [192.0.2.1] (helo=pc) | [192.0.2.1] (port=4711 helo=pc)
    R"re(from\s+\[ADDR\](?::\d+)?\s+\((?:[^()]*\s)?helo=HELO[^()]*\))re",
    // ZMailer: from name ([192.0.2.1]:4711 "EHLO pc" rhost-flags-OK-OK-OK-OK)
    R"re(from\s+[^\s()]+\s+\(\[ADDR\](?::\d+)?\s+"[eh]{2}lo\s+HELO"[^()]*\))re",
    // qmail: from unknown (HELO pc) (192.0.2.1) | name (HELO pc) (user@192.0.2.1)
    R"re(from\s+[^\s()]+\s+\([eh]{2}lo\s+HELO\)\s+\((?:[^\s()]*@)?ADDR\))re",
    // CommuniGate: from [192.0.2.1] (HELO pc) | [192.0.2.1] (account joe HELO pc)
    R"re(from\s+\[ADDR\]\s+\((?:[^()]*\s)?[eh]{2}lo\s+HELO\))re",
    // Postfix and Sendmail:
    // from pc (name [192.0.2.1]) | pc ([192.0.2.1]) | pc (user@name [192.0.2.1] (may be forged))
    R"re(from\s+HELO\s+\((?:[^()\[\]]*\s)?\[ADDR\](?::\d+)?(?:\s+\(may be forged\))?\))re",
    // Bare brackets: from pc [192.0.2.1]
    R"re(from\s+HELO\s+\[ADDR\])re",
    // Exchange and other gateways that write no reverse names: from pc (192.0.2.1)
    R"re(from\s+HELO\s+\(ADDR\))re",
};

void s_replace(std::string& text, std::string_view what, std::string_view with) {
    text.replace(text.find(what), what.size(), with);
}

std::unique_ptr<RE2> s_compile(std::string_view shape) {
    std::string pattern(shape);
    s_replace(pattern, "HELO", R"re((?P<helo>[^\s()"]+))re");
    s_replace(pattern, "ADDR", R"re((?:ipv6:)?(?P<address>[0-9a-f.:]+))re");
    RE2::Options options;
    options.set_case_sensitive(false);
    options.set_encoding(RE2::Options::EncodingLatin1);
    options.set_log_errors(false);
    return std::make_unique<RE2>(pattern, options);
}

std::optional<ReceivedClient> s_match(RE2 const& pattern, std::string_view value) {
    auto const& groups = pattern.NamedCapturingGroups();
    std::array<re2::StringPiece, 3> found; // the whole match, and the two groups in either order
    re2::StringPiece const text(value.data(), value.size());
    if (!pattern.Match(text, 0, text.size(), RE2::ANCHOR_START, found.data(), found.size())) {
        return std::nullopt;
    }
    auto const part = [&](char const* name) {
        return found.at(static_cast<std::size_t>(groups.at(name))).as_string();
    };
    return ReceivedClient{part("helo"), part("address"), found[0].size()};
}

} // namespace

std::optional<ReceivedClient> receivedClient(std::string_view value) {
    static auto const patterns = [] {
        std::vector<std::unique_ptr<RE2>> compiled(std::size(shapes));
        std::transform(std::begin(shapes), std::end(shapes), compiled.begin(), s_compile);
        return compiled;
    }();
    for (auto const& pattern : patterns) {
        if (auto client = s_match(*pattern, value)) {
            return client;
        }
    }
    return std::nullopt;
}

} // namespace Quorvane::Rules
