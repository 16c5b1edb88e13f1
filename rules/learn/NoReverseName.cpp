// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/NoReverseName.h"

#include "rules/learn/ReceivedShapes.h"

#include <cstddef>
#include <re2/re2.h>

namespace Quorvane::Rules {

namespace {

// The end of the header field that begins at `begin`: after the line end of its last line.
std::size_t s_fieldEnd(std::string_view text, std::size_t begin) {
    auto end = begin;
    do {
        auto const newline = text.find('\n', end);
        if (newline == std::string_view::npos) {
            return text.size();
        }
        end = newline + 1;
    } while (end < text.size() && (text[end] == ' ' || text[end] == '\t'));
    return end;
}

// Where the value of a Received field begins; npos when it is another field.
std::size_t s_receivedValue(std::string_view field) {
    static RE2 const name(R"((?i)received[ \t]*:[ \t]*)", RE2::Latin1);
    re2::StringPiece value(field.data(), field.size());
    return RE2::Consume(&value, name) ? field.size() - value.size() : std::string_view::npos;
}

bool s_isEmptyLine(std::string_view text, std::size_t at) {
    return text.substr(at, 1) == "\n" || text.substr(at, 2) == "\r\n";
}

// Whether a Received value of unknown shape names a client. If not, it records a step inside a
// server.
bool s_namesClient(std::string_view value) {
    return value.substr(0, value.find(" by ")).find('[') != std::string_view::npos;
}

std::string s_exchangeForm(ReceivedClient const& client, std::string_view value) {
    std::string rewritten = "from " + client.m_helo + " (" + client.m_address + ")";
    rewritten.append(value.substr(client.m_length));
    return rewritten;
}

} // namespace

std::optional<std::string> withoutReverseNames(std::string_view headerSection,
                                               IsOwnRelay const& isOwnRelay) {
    std::string rewritten;
    std::size_t begin = 0;
    while (begin < headerSection.size() && !s_isEmptyLine(headerSection, begin)) {
        auto const end = s_fieldEnd(headerSection, begin);
        auto const field = headerSection.substr(begin, end - begin);
        auto const valueAt = s_receivedValue(field);
        auto const client = valueAt == std::string_view::npos
                                ? std::nullopt
                                : receivedClient(field.substr(valueAt));
        begin = end;
        if (!client) {
            if (valueAt != std::string_view::npos && s_namesClient(field.substr(valueAt))) {
                return std::nullopt;
            }
            rewritten.append(field);
            continue;
        }
        rewritten.append(field.substr(0, valueAt));
        rewritten.append(s_exchangeForm(*client, field.substr(valueAt)));
        if (!isOwnRelay(client->m_address)) {
            rewritten.append(headerSection.substr(begin));
            return rewritten;
        }
    }
    return std::nullopt;
}

} // namespace Quorvane::Rules
