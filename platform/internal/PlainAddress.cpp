// SPDX-License-Identifier: Apache-2.0
#include "platform/internal/PlainAddress.h"

#include "platform/internal/AddressText.h"
#include "platform/Strings.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace Quorvane::internal {

namespace {

// What a byte may be part of, as bits. "Within" means not the first or last byte of a word.
using ByteClass = std::uint8_t;
constexpr ByteClass alphanumeric = 1;
constexpr ByteClass withinLocalWord = 2;
constexpr ByteClass withinDomainWord = 4;
constexpr ByteClass ofName = 8;
constexpr ByteClass ofQuotedName = 16;

constexpr bool s_isLetterOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

constexpr ByteClass s_classesOf(char c) {
    unsigned int classes = 0;
    if (s_isLetterOrDigit(c)) {
        classes |= alphanumeric | ofName;
    }
    if (c == ' ' || c == '-' || c == '\'') {
        classes |= ofName;
    }
    if (c == '_' || c == '+' || c == '-' || c == '=') {
        classes |= withinLocalWord;
    }
    if (c == '-') {
        classes |= withinDomainWord;
    }
    if (c >= ' ' && c <= '~' && c != '"' && c != '\\' && c != '?') {
        classes |= ofQuotedName;
    }
    return static_cast<ByteClass>(classes);
}

constexpr auto s_classes = [] {
    std::array<ByteClass, 256> table{};
    for (std::size_t byte = 0; byte < table.size(); ++byte) {
        table.at(byte) = s_classesOf(static_cast<char>(byte));
    }
    return table;
}();

bool s_isOf(ByteClass wanted, char c) {
    return (s_classes[static_cast<unsigned char>(c)] & wanted) != 0;
}

bool s_areAllOf(ByteClass wanted, std::string_view text) {
    return std::all_of(text.begin(), text.end(), [=](char c) { return s_isOf(wanted, c); });
}

// Words between dots, each of letters, digits and some other bytes, which are within it only.
bool s_areWords(std::string_view text, ByteClass others) {
    char before = '.';
    for (char const c : text) {
        if (!s_isOf(alphanumeric, c) && (before == '.' || (c != '.' && !s_isOf(others, c)))) {
            return false;
        }
        before = c;
    }
    return s_isOf(alphanumeric, before);
}

bool s_isName(std::string_view name) {
    name = trimmed(name);
    if (name.size() > 1 && name.front() == '"' && name.back() == '"') {
        auto const quoted = name.substr(1, name.size() - 2);
        return s_areAllOf(ofQuotedName, quoted);
    }
    return s_areAllOf(ofName, name);
}

// local@domain, alone or in angle brackets after a name.
std::optional<PlainAddress> s_mailbox(std::string_view text) {
    text = trimmed(text);
    if (!text.empty() && text.back() == '>') {
        auto const open = text.rfind('<');
        if (open == std::string_view::npos || !s_isName(text.substr(0, open))) {
            return std::nullopt;
        }
        text = text.substr(open + 1, text.size() - open - 2);
    }
    auto const at = text.find('@');
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    auto const local = text.substr(0, at);
    auto const domain = text.substr(at + 1);
    bool const isPlain = s_areWords(local, withinLocalWord) && s_areWords(domain, withinDomainWord);
    return isPlain ? std::optional(PlainAddress{local, domain}) : std::nullopt;
}

// Length of the first mailbox of a list, if the mailbox is a plain one.
std::size_t s_mailboxLength(std::string_view list) {
    bool isQuoted = false;
    for (std::size_t i = 0; i < list.size(); ++i) {
        isQuoted = isQuoted != (list[i] == '"');
        if (list[i] == ',' && !isQuoted) {
            return i;
        }
    }
    return list.size();
}

// The first of a list, all of which are plain: a broken one behind it can change what is read.
std::optional<PlainAddress> s_firstOfList(std::string_view list) {
    auto const length = s_mailboxLength(list);
    auto const first = s_mailbox(list.substr(0, length));
    for (auto rest = list.substr(length); first && !rest.empty();) {
        rest.remove_prefix(1);
        auto const next = s_mailboxLength(rest);
        if (!s_mailbox(rest.substr(0, next))) {
            return std::nullopt;
        }
        rest.remove_prefix(next);
    }
    return first;
}

// "<>", the sender of a bounce, and "undisclosed-recipients:;".
bool s_isNobody(std::string_view text) {
    constexpr std::string_view emptyGroup = ":;";
    text = trimmed(text);
    bool const isGroup = text.size() > emptyGroup.size() && text.ends_with(emptyGroup);
    text.remove_suffix(isGroup ? emptyGroup.size() : 0);
    return isGroup ? s_areWords(text, withinDomainWord) : text.empty() || text == "<>";
}

bool s_isLookedAtWhole(std::string_view text) {
    auto const count = std::count_if(text.begin(), text.end(), isAddressSeparator);
    return text.size() <= consideredBytes &&
           static_cast<std::size_t>(count) <= consideredSeparators;
}

} // namespace

std::optional<PlainAddress> plainAddress(std::string_view text) {
    if (!s_isLookedAtWhole(text)) {
        return std::nullopt;
    }
    return s_isNobody(text) ? std::optional(PlainAddress{}) : s_firstOfList(text);
}

} // namespace Quorvane::internal
