// SPDX-License-Identifier: Apache-2.0
#include "platform/IPPrefix.h"

#include "include2/Exception.h"
#include "platform/internal/AddressBits.h"

#include <charconv>
#include <cstddef>
#include <string>

namespace Quorvane {

namespace {

// No prefix is longer; what is shown of a longer text.
constexpr std::size_t s_shownLength = 80;

[[noreturn]] void s_fail(std::string const& text, std::string const& what) {
    auto const shown = text.size() > s_shownLength ? text.substr(0, s_shownLength) + "..." : text;
    throw Exception("address prefix \"" + shown + "\": " + what, 3, nullptr, 0);
}

int s_lengthOf(std::string const& text, std::size_t slash, int most) {
    if (slash == std::string::npos) {
        return most;
    }
    char const* const begin = text.data() + slash + 1;
    char const* const end = text.data() + text.size();
    int length = -1;
    bool const isNumber = std::from_chars(begin, end, length).ptr == end;
    // Some readers take a number with a leading zero for octal.
    bool const isOctal = end - begin > 1 && *begin == '0';
    if (!isNumber || isOctal || length < 0 || *begin == '-' || length > most) {
        s_fail(text, "the length after \"/\" must be a number from 0 to " + std::to_string(most));
    }
    return length;
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
    auto const number = internal::toNumber(address.bytes());
    auto const rest = internal::bitsAfter(prefix.m_length);
    prefix.m_first = internal::toBytes(number & ~rest);
    prefix.m_last = internal::toBytes(number | rest);
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
