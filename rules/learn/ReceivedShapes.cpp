// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/ReceivedShapes.h"

#include <memory>
#include <re2/re2.h>
#include <vector>

namespace Quorvane::Rules {

namespace {

struct Shape {
    std::string_view m_name;
    // HELO and ADDR stand for the two things to find.
    std::string_view m_pattern;
};

// The more particular ones first: "([ADDR])" alone would fit Exim's annotations too.
constexpr Shape shapes[] = {
    // from name ([192.0.2.1] helo=pc) | ([192.0.2.1]:4711 ident=x helo=pc)
    {"exim", R"re(from\s+[^\s()]+\s+\(\[ADDR\](?::\d+)?\s+(?:[^()]*\s)?helo=HELO[^()]*\))re"},
    // from [192.0.2.1] (helo=pc) | [192.0.2.1] (port=4711 helo=pc)
    {"exim, no name", R"re(from\s+\[ADDR\](?::\d+)?\s+\((?:[^()]*\s)?helo=HELO[^()]*\))re"},
    // from name ([192.0.2.1]:4711 "EHLO pc" rhost-flags-OK-OK-OK-OK)
    {"zmailer", R"re(from\s+[^\s()]+\s+\(\[ADDR\](?::\d+)?\s+"[eh]{2}lo\s+HELO"[^()]*\))re"},
    // from unknown (HELO pc) (192.0.2.1) | name (HELO pc) (user@192.0.2.1)
    {"qmail", R"re(from\s+[^\s()]+\s+\([eh]{2}lo\s+HELO\)\s+\((?:[^\s()]*@)?ADDR\))re"},
    // from [192.0.2.1] (HELO pc) | [192.0.2.1] (account joe HELO pc)
    {"communigate", R"re(from\s+\[ADDR\]\s+\((?:[^()]*\s)?[eh]{2}lo\s+HELO\))re"},
    // from pc (name [192.0.2.1]) | pc ([192.0.2.1]) | pc (user@name [192.0.2.1] (may be forged))
    {"postfix, sendmail",
     R"re(from\s+HELO\s+\((?:[^()\[\]]*\s)?\[ADDR\](?::\d+)?(?:\s+\(may be forged\))?\))re"},
    // from pc [192.0.2.1]
    {"bare brackets", R"re(from\s+HELO\s+\[ADDR\])re"},
    // from pc (192.0.2.1): what a border without reverse names writes
    {"exchange", R"re(from\s+HELO\s+\(ADDR\))re"},
};

void s_replace(std::string& text, std::string_view what, std::string_view with) {
    auto const at = text.find(what);
    text.replace(at, what.size(), with);
}

std::unique_ptr<RE2> s_compile(Shape const& shape) {
    std::string pattern(shape.m_pattern);
    s_replace(pattern, "HELO", R"re((?P<helo>[^\s()"]+))re");
    s_replace(pattern, "ADDR", R"re((?P<address>(?:ipv6:)?[0-9a-f.:]+))re");
    RE2::Options options;
    options.set_case_sensitive(false);
    options.set_encoding(RE2::Options::EncodingLatin1);
    options.set_log_errors(false);
    return std::make_unique<RE2>("(" + pattern + ")", options);
}

std::vector<std::unique_ptr<RE2>> const& s_patterns() {
    static auto const patterns = [] {
        std::vector<std::unique_ptr<RE2>> compiled;
        for (auto const& shape : shapes) {
            compiled.push_back(s_compile(shape));
        }
        return compiled;
    }();
    return patterns;
}

std::string s_withoutTag(std::string_view address) {
    // "IPv6:" in any case is the only tag; no address begins with an i.
    constexpr std::size_t tagLength = 5;
    bool const isTagged = !address.empty() && (address[0] == 'i' || address[0] == 'I');
    return std::string(isTagged ? address.substr(tagLength) : address);
}

std::optional<ReceivedClient> s_match(RE2 const& pattern, std::string_view value) {
    auto const& groups = pattern.NamedCapturingGroups();
    std::vector<re2::StringPiece> found(4);
    re2::StringPiece const text(value.data(), value.size());
    if (!pattern.Match(text, 0, text.size(), RE2::ANCHOR_START, found.data(), 4)) {
        return std::nullopt;
    }
    auto const part = [&](char const* name) {
        auto const& piece = found.at(static_cast<std::size_t>(groups.at(name)));
        return std::string_view(piece.data(), piece.size());
    };
    return ReceivedClient{
        std::string(part("helo")), s_withoutTag(part("address")), found[0].size(), {}};
}

} // namespace

std::optional<ReceivedClient> receivedClient(std::string_view value) {
    auto const& patterns = s_patterns();
    for (std::size_t i = 0; i < patterns.size(); ++i) {
        if (auto client = s_match(*patterns[i], value)) {
            client->m_shape = shapes[i].m_name;
            return client;
        }
    }
    return std::nullopt;
}

} // namespace Quorvane::Rules
