// SPDX-License-Identifier: Apache-2.0
//
// IPPrefix: a range of addresses in CIDR notation (RFC 4632, RFC 4291 section 2.3). A plain value.
//
// The families are apart: "::/0" holds every IPv6 address and no IPv4 one, as "0.0.0.0/0" holds no
// IPv6 one. An IPv4-mapped prefix of 96 bits or more is the IPv4 prefix.
#pragma once

#include "include2/Export.h"
#include "platform/IPAddress.h"

#include <string>

namespace Quorvane {

class QV_API IPPrefix {
  public:
    // "::/128".
    IPPrefix() = default;
    // Parses "192.0.2.0/24", "2001:db8::/32", "IPv6:2001:db8::1" or a single address (its whole
    // length). A length counts in the bits of the notation: "::ffff:192.0.2.0/120" is
    // "192.0.2.0/24". Throws an Exception of category 3 that names the text and what is wrong with
    // it: no address, a length out of range, or bits set after the length.
    static IPPrefix parse(std::string const& text);

    // The lowest address of the range.
    IPAddress::Bytes const& first() const { return m_first; }
    // The highest one.
    IPAddress::Bytes const& last() const { return m_last; }
    // In bits of the 16-byte form: an IPv4 length counts 96 more.
    int length() const { return m_length; }

    // False for IPv4 and for IPv4-mapped prefixes of 96 bits or more.
    bool isV6() const;
    // False for a null address and for one of the other family.
    bool contains(IPAddress const& address) const;
    // Canonical text, such as "192.0.2.0/24".
    std::string asString() const;

  private:
    IPAddress::Bytes m_first{};
    IPAddress::Bytes m_last{};
    int m_length = 128;
};

} // namespace Quorvane
