// SPDX-License-Identifier: Apache-2.0
#include "apps/input/HeaderCheck.h"

#include <algorithm>

namespace Quorvane {

namespace {

bool s_isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// What names of header fields consist of. More is allowed (RFC 5322 section 2.2), braces and
// quotes among it, but not used, and JSON is no message.
bool s_isNameByte(char c) {
    return s_isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '_' || c == '.';
}

// "Name: value", blanks before the colon allowed.
bool s_isField(std::string_view line) {
    if (line.empty() || !s_isLetter(line.front())) {
        return false;
    }
    auto const* const nameEnd = std::find_if_not(line.begin(), line.end(), s_isNameByte);
    auto const* const colon =
        std::find_if_not(nameEnd, line.end(), [](char c) { return c == ' ' || c == '\t'; });
    return colon != line.end() && *colon == ':';
}

// Text in a national character set may hold ESC (ISO 2022).
bool s_isBinary(std::string_view line) {
    return std::any_of(line.begin(), line.end(), [](char c) {
        auto const byte = static_cast<unsigned char>(c);
        return byte < 0x20 && c != '\t' && c != '\r' && c != '\x1B';
    });
}

} // namespace

std::string whyNotJudged(std::string_view headers, HeaderLimits const& limits) {
    if (headers.size() > limits.m_maxBytes) {
        return tooLong(limits);
    }
    if (!hasHeaderField(headers)) {
        return noHeaderField;
    }
    auto const fields = HeaderReader::countFields(headers);
    if (fields <= limits.m_maxFields) {
        return {};
    }
    return "it has " + std::to_string(fields) + " header fields, and max-headers is " +
           std::to_string(limits.m_maxFields);
}

std::string tooLong(HeaderLimits const& limits) {
    return "its header section is longer than max-header-bytes, which is " +
           std::to_string(limits.m_maxBytes);
}

bool hasHeaderField(std::string_view headers) {
    while (!headers.empty()) {
        auto const end = std::min(headers.find('\n'), headers.size());
        auto const line = headers.substr(0, end);
        if (s_isField(line)) {
            return true;
        }
        if (s_isBinary(line)) {
            return false;
        }
        headers.remove_prefix(std::min(end + 1, headers.size()));
    }
    return false;
}

} // namespace Quorvane
