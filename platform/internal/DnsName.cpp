// SPDX-License-Identifier: Apache-2.0
#include "platform/internal/DnsName.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace Quorvane::Dns {
namespace {

bool s_isPlainByte(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_' || c == '.';
}

bool s_isNameByte(char c) {
    auto const byte = static_cast<unsigned char>(c);
    return byte > 0x20 && byte != 0x7f;
}

bool s_isLabel(std::string_view label) {
    return !label.empty() && label.size() <= maxLabelLength &&
           std::all_of(label.begin(), label.end(), s_isNameByte);
}

bool s_hasOnlyLabels(std::string_view name) {
    for (;;) {
        auto const dot = name.find('.');
        if (!s_isLabel(name.substr(0, dot))) {
            return false;
        }
        if (dot == std::string_view::npos) {
            return true;
        }
        name.remove_prefix(dot + 1);
    }
}

bool s_isAddressText(std::string const& name) {
    bool const isBracketed = name.size() > 2 && name.front() == '[' && name.back() == ']';
    return IPAddress::isValidIPAddress(isBracketed ? name.substr(1, name.size() - 2) : name);
}

void s_appendNumber(std::string& text, unsigned char byte) {
    text += '\\';
    text += static_cast<char>('0' + byte / 100);
    text += static_cast<char>('0' + byte / 10 % 10);
    text += static_cast<char>('0' + byte % 10);
}

std::string s_escaped(std::string const& name) {
    std::string text;
    for (char const c : name) {
        if (s_isPlainByte(c)) {
            text += c;
        } else {
            s_appendNumber(text, static_cast<unsigned char>(c));
        }
    }
    return text;
}

void s_appendEscaped(std::string& text, char c) {
    auto const byte = static_cast<unsigned char>(c);
    if (byte <= 0x20 || byte >= 0x7f) {
        s_appendNumber(text, byte);
        return;
    }
    if (c == '.' || c == '\\') {
        text += '\\';
    }
    text += c;
}

} // namespace

std::string askableName(std::string const& name) {
    std::string asked = name;
    if (!asked.empty() && asked.back() == '.') {
        asked.pop_back();
    }
    if (asked.size() > maxNameLength || !s_hasOnlyLabels(asked) || s_isAddressText(asked)) {
        return {};
    }
    return s_escaped(asked);
}

std::string reverseName(IPAddress const& address) {
    return address.reversedLabels() + (address.isV6() ? "ip6.arpa" : "in-addr.arpa");
}

std::string wireNameText(std::string const& wire) {
    std::string text;
    std::size_t at = 0;
    while (at < wire.size() && wire[at] != '\0') {
        auto const length = static_cast<unsigned char>(wire[at]);
        if (length > maxLabelLength || length >= wire.size() - at) {
            return {};
        }
        if (!text.empty()) {
            text += '.';
        }
        for (char const c : wire.substr(at + 1, length)) {
            s_appendEscaped(text, c);
        }
        at += length + 1U;
    }
    return at < wire.size() ? text : std::string();
}

} // namespace Quorvane::Dns
