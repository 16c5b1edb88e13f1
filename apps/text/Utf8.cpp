// SPDX-License-Identifier: Apache-2.0
#include "apps/text/Utf8.h"

#include <array>
#include <cstdint>
#include <glib.h>

namespace Quorvane {

namespace {

void s_appendHex(std::string& out, gunichar character) {
    static constexpr char digits[] = "0123456789ABCDEF";
    out += "\\x";
    out += digits[character >> 4];
    out += digits[character & 0x0F];
}

} // namespace

std::string toUtf8(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    while (!bytes.empty()) {
        char const* end = nullptr;
        g_utf8_validate_len(bytes.data(), bytes.size(), &end);
        auto const valid = static_cast<std::size_t>(end - bytes.data());
        out.append(bytes, 0, valid);
        bytes.remove_prefix(valid);
        if (!bytes.empty()) { // a byte that is not UTF-8, or NUL, at which GLib stops
            std::array<char, 6> character{};
            auto const byte = static_cast<std::uint8_t>(bytes.front());
            auto const length = g_unichar_to_utf8(byte, character.data());
            out.append(character.data(), static_cast<std::size_t>(length));
            bytes.remove_prefix(1);
        }
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
    for (auto const* at = text.data(); at != text.data() + text.size();) {
        auto const* const next = g_utf8_next_char(at);
        auto const character = g_utf8_get_char(at);
        // U+0080 to U+009F control terminals too.
        if (character < 0x20 || (character >= 0x7F && character <= 0x9F)) {
            s_appendHex(out, character);
        } else {
            out.append(at, next);
        }
        at = next;
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
    return static_cast<std::size_t>(g_utf8_strlen(text.data(), static_cast<gssize>(text.size())));
}

} // namespace Quorvane
