// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/NoReverseName.h"

#include "rules/learn/ReceivedShapes.h"

#include <cstddef>

namespace Quorvane::Rules {

namespace {

constexpr std::string_view receivedName = "received";

char s_lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool s_isBlank(char c) {
    return c == ' ' || c == '\t';
}

// The end of the header field that begins at `begin`: after the line end of its last line.
std::size_t s_fieldEnd(std::string_view text, std::size_t begin) {
    auto end = begin;
    do {
        auto const newline = text.find('\n', end);
        if (newline == std::string_view::npos) {
            return text.size();
        }
        end = newline + 1;
    } while (end < text.size() && s_isBlank(text[end]));
    return end;
}

// Where the value of a Received field begins; npos when it is another field.
std::size_t s_receivedValue(std::string_view field) {
    if (field.size() <= receivedName.size()) {
        return std::string_view::npos;
    }
    for (std::size_t i = 0; i < receivedName.size(); ++i) {
        if (s_lower(field[i]) != receivedName[i]) {
            return std::string_view::npos;
        }
    }
    auto at = field.find_first_not_of(" \t", receivedName.size());
    if (at == std::string_view::npos || field[at] != ':') {
        return std::string_view::npos;
    }
    at = field.find_first_not_of(" \t", at + 1);
    return at == std::string_view::npos ? field.size() : at;
}

bool s_isEmptyLine(std::string_view text, std::size_t at) {
    return text.substr(at, 1) == "\n" || text.substr(at, 2) == "\r\n";
}

// Whether a Received value in no known shape names a client all the same; one that does not is a
// step inside a server.
bool s_namesClient(std::string_view value) {
    return value.substr(0, value.find(" by ")).find('[') != std::string_view::npos;
}

std::string s_exchangeForm(ReceivedClient const& client, std::string_view value) {
    std::string rewritten = "from " + client.m_helo + " (" + client.m_address + ")";
    rewritten.append(value.substr(client.m_length));
    return rewritten;
}

} // namespace

std::optional<std::string> withoutReverseName(std::string_view receivedValue) {
    auto const client = receivedClient(receivedValue);
    if (!client) {
        return std::nullopt;
    }
    return s_exchangeForm(*client, receivedValue);
}

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
