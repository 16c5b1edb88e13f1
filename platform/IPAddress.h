// SPDX-License-Identifier: Apache-2.0
//
// IPAddress: an IPv4 or IPv6 address, or null. 16 bytes in network order, an IPv4 address in its
// IPv4-mapped form (RFC 4291 section 2.5.5.2). A plain value: copy freely, share read-only.
#pragma once

#include "include2/Export.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace Quorvane {

class QV_API IPAddress {
  public:
    // In network order.
    using Bytes = std::array<std::uint8_t, 16>;

    // Null.
    IPAddress() = default;
    // Null when `text` is not valid (isValidIPAddress).
    explicit IPAddress(std::string const& text);
    // Never null; an IPv4-mapped address is the IPv4 one.
    static IPAddress fromBytes(Bytes const& bytes);
    // From 4 or 16 bytes in network order, as sockets and A and AAAA records have them; null for
    // another length.
    static IPAddress fromNetwork(std::string_view bytes);

    // True for what inet_pton accepts as IPv4 or IPv6, and for the tagged literal of RFC 5321
    // section 4.1.3 ("IPv6:" in any letter case, then an IPv6 address). 0.0.0.0 and :: are valid.
    static bool isValidIPAddress(std::string const& text);

    // True for the ranges that the IANA special-purpose address registries keep off the public
    // Internet and that relays really use: 0.0.0.0/8, 10.0.0.0/8, 100.64.0.0/10, 127.0.0.0/8,
    // 169.254.0.0/16, 172.16.0.0/12, 192.168.0.0/16, ::/128, ::1/128, fc00::/7, fe80::/10. The
    // documentation ranges count as public. False for a null address.
    static bool isPrivateAddress(IPAddress const& address);

    // True: there is no address.
    bool isNull() const { return !m_isSet; }
    // False for IPv4, for IPv4-mapped IPv6 and for null.
    bool isV6() const;
    // All zero when null.
    Bytes const& bytes() const { return m_bytes; }

    // What inet_ntop prints, an IPv4-mapped address as dotted quad; with `compressed` false every
    // group of an IPv6 address in full. Empty when null.
    std::string asString(bool compressed) const;

    // The address from its last part to its first, as names of it in DNS begin: octets (RFC 1035
    // section 3.5) or hexadecimal digits (RFC 3596 section 2.5), each with a dot after it. Empty
    // when null.
    std::string reversedLabels() const;

    // The same bytes, or both null.
    friend bool operator==(IPAddress const& a, IPAddress const& b) {
        return a.m_isSet == b.m_isSet && a.m_bytes == b.m_bytes;
    }
    // The opposite.
    friend bool operator!=(IPAddress const& a, IPAddress const& b) { return !(a == b); }

  private:
    Bytes m_bytes{};
    bool m_isSet = false;
};

} // namespace Quorvane
