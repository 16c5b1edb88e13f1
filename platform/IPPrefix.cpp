// SPDX-License-Identifier: Apache-2.0
#include "platform/IPPrefix.h"

#include "include2/Exception.h"
#include "platform/internal/AddressBits.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>

namespace Quorvane {

namespace {

using Bytes = IPAddress::Bytes;

// No prefix is longer; what is shown of a longer text.
constexpr std::size_t s_shownLength = 80;

[[noreturn]] void s_fail(std::string const& text, std::string const& what) {
    auto const shown = text.size() > s_shownLength ? text.substr(0, s_shownLength) + "..." : text;
    throw Exception("address prefix \"" + shown + "\": " + what, 3, nullptr, 0);
}

// Decimal digits without leading zeros, which some readers take for octal.
std::optional<int> s_parseLength(std::string const& digits, int most) {
    bool const wellFormed = !digits.empty() && digits.size() <= 3 &&
                            digits.find_first_not_of("0123456789") == std::string::npos &&
                            (digits.size() == 1 || digits.front() != '0');
    if (!wellFormed || std::stoi(digits) > most) {
        return std::nullopt;
    }
    return std::stoi(digits);
}

// `bytes` with every bit after `length` set to `bit`.
Bytes s_filled(Bytes bytes, int length, bool bit) {
    for (int i = length; i < internal::addressBits; ++i) {
        auto& byte = bytes.at(static_cast<std::size_t>(i) / 8);
        auto const mask = static_cast<std::uint8_t>(0x80U >> (static_cast<unsigned>(i) % 8));
        byte = static_cast<std::uint8_t>(bit ? byte | mask : byte & ~mask);
    }
    return bytes;
}

int s_lengthOf(std::string const& text, std::size_t slash, int most) {
    if (slash == std::string::npos) {
        return most;
    }
    auto const length = s_parseLength(text.substr(slash + 1), most);
    if (!length) {
        s_fail(text, "the length after \"/\" must be a number from 0 to " + std::to_string(most));
    }
    return *length;
}

} // namespace

IPPrefix IPPrefix::parse(std::string const& text) {
    auto const slash = text.find('/');
    auto const host = text.substr(0, slash);
    IPAddress const address(host);
    if (address.isNull()) {
        s_fail(text, "no IPv4 or IPv6 address; write 192.0.2.0/24 or 2001:db8::/32");
    }
    bool const dotted = host.find(':') == std::string::npos;
    IPPrefix prefix;
    prefix.m_length = dotted ? internal::mappedBits + s_lengthOf(text, slash, 32)
                             : s_lengthOf(text, slash, internal::addressBits);
    prefix.m_first = s_filled(address.bytes(), prefix.m_length, false);
    prefix.m_last = s_filled(address.bytes(), prefix.m_length, true);
    if (prefix.m_first != address.bytes()) {
        s_fail(text, "bits are set after the length; the range is " + prefix.asString());
    }
    return prefix;
}

bool IPPrefix::isV6() const {
    return m_length < internal::mappedBits || !internal::isMapped(m_first);
}

bool IPPrefix::contains(IPAddress const& address) const {
    return !address.isNull() && address.isV6() == isV6() &&
           internal::sameLeadingBits(m_first, address.bytes(), m_length);
}

std::string IPPrefix::asString() const {
    auto const bits = isV6() ? m_length : m_length - internal::mappedBits;
    return IPAddress::fromBytes(m_first).asString(true) + '/' + std::to_string(bits);
}

} // namespace Quorvane
