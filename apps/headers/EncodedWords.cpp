// SPDX-License-Identifier: Apache-2.0
#include "apps/headers/EncodedWords.h"

#include "apps/text/Utf8.h"

#include <algorithm>
#include <cctype>
#include <glib.h>
#include <memory>
#include <optional>

namespace Quorvane {

namespace {

constexpr auto npos = std::string_view::npos;
constexpr std::string_view blanks = " \t\r\n";
constexpr std::size_t longestCharset = 40;
// Of a word; RFC 2047 allows 75 bytes, and not all programs keep to that. Without a limit, text
// full of beginnings would be searched again from each of them.
constexpr std::size_t longestWord = 2000;

using GlibText = std::unique_ptr<char, void (*)(void*)>;

// No name that a converter could take for more than a name.
bool s_isCharset(std::string_view name) {
    return !name.empty() && name.size() <= longestCharset &&
           std::all_of(name.begin(), name.end(), [](unsigned char c) {
               return std::isalnum(c) != 0 || c == '-' || c == '_' || c == '.' || c == ':';
           });
}

std::string s_fromBase64(std::string_view text) {
    std::string bytes(text);
    gsize length = 0;
    if (!bytes.empty()) {
        g_base64_decode_inplace(bytes.data(), &length);
    }
    bytes.resize(length);
    return bytes;
}

// "_" is a blank, "=E9" a byte.
std::string s_fromQuoted(std::string_view text) {
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        bool const isByte = text[at] == '=' && at + 2 < text.size() &&
                            g_ascii_isxdigit(text[at + 1]) && g_ascii_isxdigit(text[at + 2]);
        if (isByte) {
            bytes += static_cast<char>(g_ascii_xdigit_value(text[at + 1]) * 16 +
                                       g_ascii_xdigit_value(text[at + 2]));
            at += 2;
        } else {
            bytes += text[at] == '_' ? ' ' : text[at];
        }
    }
    return bytes;
}

std::optional<std::string> s_toUtf8(std::string const& bytes, std::string const& charset) {
    gsize length = 0;
    GlibText const text(g_convert(bytes.data(), static_cast<gssize>(bytes.size()), "UTF-8",
                                  charset.c_str(), nullptr, &length, nullptr),
                        g_free);
    return text ? std::optional(std::string(text.get(), length)) : std::nullopt;
}

struct Word {
    std::string m_text;
    std::size_t m_length = 0; // in the encoded text
};

// The word at the start of `text`: "=?charset?encoding?encoded?=". A language may follow the
// charset after "*" (RFC 2231).
std::optional<Word> s_word(std::string_view text) {
    auto const charsetEnd = text.find('?', 2);
    if (charsetEnd == npos || charsetEnd + 2 >= text.size() || text[charsetEnd + 2] != '?') {
        return std::nullopt;
    }
    auto const start = charsetEnd + 3;
    auto const end = text.find("?=", start);
    auto const encoded = end == npos ? std::string_view() : text.substr(start, end - start);
    auto charset = text.substr(2, charsetEnd - 2);
    charset = charset.substr(0, charset.find('*'));
    auto const encoding = g_ascii_tolower(text[charsetEnd + 1]);
    if (end == npos || !s_isCharset(charset) || (encoding != 'q' && encoding != 'b') ||
        encoded.find_first_of("? \t\r\n") != npos) {
        return std::nullopt;
    }
    auto const bytes = encoding == 'b' ? s_fromBase64(encoded) : s_fromQuoted(encoded);
    auto decoded = s_toUtf8(bytes, std::string(charset));
    return decoded ? std::optional(Word{std::move(*decoded), end + 2}) : std::nullopt;
}

} // namespace

std::string decodedWords(std::string_view bytes) {
    auto const text = toUtf8(bytes);
    std::string_view rest = text;
    std::string out;
    bool isAfterWord = false;
    while (!rest.empty()) {
        auto const start = std::min(rest.find("=?"), rest.size());
        auto const word = s_word(rest.substr(start, longestWord));
        auto const before = rest.substr(0, start);
        // Blanks between two words belong to neither.
        if (!word || !isAfterWord || before.find_first_not_of(blanks) != npos) {
            out += before;
        }
        isAfterWord = word.has_value();
        if (word) {
            out += word->m_text;
        } else {
            out += rest.substr(start, 2);
        }
        rest.remove_prefix(std::min(rest.size(), start + (word ? word->m_length : 2)));
    }
    return toUtf8(out);
}

} // namespace Quorvane
