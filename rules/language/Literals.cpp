// SPDX-License-Identifier: Apache-2.0
#include "rules/language/Literals.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace Quorvane::Rules {

namespace {

constexpr std::string_view hexDigits = "0123456789abcdef";
// The letter after the backslash and the byte it means.
constexpr std::string_view escapeLetters = "nrt\\\"";
constexpr std::string_view escapedBytes = "\n\r\t\\\"";

std::string_view s_withoutPlus(std::string_view text) {
    return text.size() > 1 && text[0] == '+' && text[1] != '-' ? text.substr(1) : text;
}

template<typename Number, typename... Format>
std::optional<Number> s_parse(std::string_view text, Format... format) {
    Number number{};
    auto const end = text.data() + text.size();
    auto const result = std::from_chars(text.data(), end, number, format...);
    if (text.empty() || result.ec != std::errc() || result.ptr != end) {
        return std::nullopt;
    }
    return number;
}

bool s_isPlain(char c) {
    return c >= ' ' && c <= '~';
}

std::string s_escaped(char c) {
    auto const at = escapedBytes.find(c);
    if (at != std::string_view::npos) {
        return {'\\', escapeLetters[at]};
    }
    return s_isPlain(c) ? std::string(1, c) : "\\x" + hexText({&c, 1});
}

// Takes one escape from after its backslash.
bool s_takeEscape(std::string_view& text, Bytes& bytes) {
    auto const letter = text.substr(0, 1);
    if (letter == "x") {
        auto const byte = text.size() < 3 ? std::nullopt : parseHex(text.substr(1, 2));
        text.remove_prefix(byte ? 3 : 0);
        bytes += byte.value_or("");
        return byte && byte->size() == 1;
    }
    auto const at = letter.empty() ? std::string_view::npos : escapeLetters.find(letter);
    if (at == std::string_view::npos) {
        return false;
    }
    bytes += escapedBytes[at];
    text.remove_prefix(1);
    return true;
}

} // namespace

std::optional<std::int32_t> parseInteger(std::string_view text) {
    return s_parse<std::int32_t>(s_withoutPlus(text), 10);
}

std::optional<double> parseNumber(std::string_view text) {
    auto const number = s_parse<double>(s_withoutPlus(text));
    return number && std::isnan(*number) ? std::nullopt : number;
}

std::optional<double> parseBits(std::string_view text) {
    if (text.substr(0, 2) != "0x") {
        return std::nullopt;
    }
    auto const bits = s_parse<std::uint64_t>(text.substr(2), 16);
    if (!bits) {
        return std::nullopt;
    }
    double number = 0;
    std::memcpy(&number, &*bits, sizeof number);
    return number;
}

std::string numberText(double number) {
    std::array<char, 32> text{};
    if (!std::isnan(number)) {
        auto const result = std::to_chars(text.data(), text.data() + text.size(), number);
        return {text.data(), result.ptr};
    }
    std::uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    auto const result = std::to_chars(text.data(), text.data() + text.size(), bits, 16);
    return "bits(0x" + std::string(text.data(), result.ptr) + ')';
}

std::optional<Bytes> parseHex(std::string_view text) {
    Bytes bytes;
    while (!text.empty()) {
        if (text.front() == ' ') {
            text.remove_prefix(1);
            continue;
        }
        auto const byte =
            text.size() < 2 ? std::nullopt : s_parse<std::uint8_t>(text.substr(0, 2), 16);
        if (!byte) {
            return std::nullopt;
        }
        bytes += static_cast<char>(*byte);
        text.remove_prefix(2);
    }
    return bytes;
}

std::string hexText(std::string_view bytes) {
    std::string text;
    for (auto const c : bytes) {
        auto const byte = static_cast<unsigned char>(c);
        text += hexDigits[byte >> 4U];
        text += hexDigits[byte & 15U];
    }
    return text;
}

std::optional<Bytes> unescape(std::string_view text) {
    Bytes bytes;
    while (!text.empty()) {
        auto const c = text.front();
        text.remove_prefix(1);
        if (c != '\\') {
            bytes += c;
        } else if (!s_takeEscape(text, bytes)) {
            return std::nullopt;
        }
    }
    return bytes;
}

std::string quotedText(std::string_view bytes) {
    std::string text = "\"";
    for (auto const c : bytes) {
        text += s_escaped(c);
    }
    return text + '"';
}

} // namespace Quorvane::Rules
