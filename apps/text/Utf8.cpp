// SPDX-License-Identifier: Apache-2.0
#include "apps/text/Utf8.h"

#include <algorithm>
#include <cstdint>

namespace Quorvane {

namespace {

std::uint8_t s_byte(std::string_view text, std::size_t at) {
    return at < text.size() ? static_cast<std::uint8_t>(text[at]) : std::uint8_t{0};
}

bool s_isBetween(std::uint8_t byte, int low, int high) {
    return byte >= low && byte <= high;
}

bool s_isContinuation(std::uint8_t byte) {
    return s_isBetween(byte, 0x80, 0xBF);
}

// The second byte decides about overlong forms, surrogates and what lies beyond U+10FFFF.
bool s_isSecond(std::uint8_t lead, std::uint8_t second) {
    switch (lead) {
    case 0xE0:
        return s_isBetween(second, 0xA0, 0xBF);
    case 0xED:
        return s_isBetween(second, 0x80, 0x9F);
    case 0xF0:
        return s_isBetween(second, 0x90, 0xBF);
    case 0xF4:
        return s_isBetween(second, 0x80, 0x8F);
    default:
        return s_isContinuation(second);
    }
}

// Length of the well-formed sequence at `at`; 0 when there is none (RFC 3629 section 4).
std::size_t s_sequenceLength(std::string_view text, std::size_t at) {
    auto const lead = s_byte(text, at);
    if (lead < 0x80) {
        return 1;
    }
    std::size_t const length = s_isBetween(lead, 0xC2, 0xDF)   ? 2
                               : s_isBetween(lead, 0xE0, 0xEF) ? 3
                               : s_isBetween(lead, 0xF0, 0xF4) ? 4
                                                               : 0;
    if (length == 0 || !s_isSecond(lead, s_byte(text, at + 1))) {
        return 0;
    }
    for (std::size_t i = 2; i < length; ++i) {
        if (!s_isContinuation(s_byte(text, at + i))) {
            return 0;
        }
    }
    return length;
}

void s_appendLatin1(std::string& out, std::uint8_t byte) {
    out += static_cast<char>(0xC0 | (byte >> 6));
    out += static_cast<char>(0x80 | (byte & 0x3F));
}

void s_appendHex(std::string& out, std::uint8_t byte) {
    static constexpr char digits[] = "0123456789ABCDEF";
    out += "\\x";
    out += digits[byte >> 4];
    out += digits[byte & 0x0F];
}

bool s_isControl(std::uint8_t byte) {
    return byte < 0x20 || byte == 0x7F;
}

} // namespace

std::string toUtf8(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (std::size_t at = 0; at < bytes.size();) {
        auto const length = s_sequenceLength(bytes, at);
        if (length == 0) {
            s_appendLatin1(out, s_byte(bytes, at));
            ++at;
            continue;
        }
        out.append(bytes, at, length);
        at += length;
    }
    return out;
}

std::vector<std::string> toUtf8(std::vector<std::string> const& texts) {
    std::vector<std::string> converted;
    converted.reserve(texts.size());
    for (auto const& text : texts) {
        converted.push_back(toUtf8(text));
    }
    return converted;
}

std::string toPrintable(std::string_view bytes) {
    auto const text = toUtf8(bytes);
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        auto const byte = s_byte(text, at);
        // U+0080 to U+009F steer terminals too.
        bool const isC1 = byte == 0xC2 && s_isBetween(s_byte(text, at + 1), 0x80, 0x9F);
        if (isC1) {
            ++at;
        }
        if (isC1 || s_isControl(byte)) {
            s_appendHex(out, s_byte(text, at));
        } else {
            out += text[at];
        }
    }
    return out;
}

std::string toPrintableLines(std::string_view text) {
    std::string out;
    for (;;) {
        auto const end = text.find('\n');
        out += toPrintable(text.substr(0, end));
        if (end == std::string_view::npos) {
            return out;
        }
        out += '\n';
        text.remove_prefix(end + 1);
    }
}

std::size_t columns(std::string_view text) {
    // Continuation bytes of UTF-8 take no column.
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

} // namespace Quorvane
