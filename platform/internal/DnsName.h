// SPDX-License-Identifier: Apache-2.0
//
// Converts domain names between the text in mail and the wire format. Pure functions.
//
// Names come from hostile mail, and the owner of a zone may put any byte into it. So every name of
// visible bytes is asked, and what could mean something in libunbound's text form (a backslash
// starts an escape) is escaped. Text with blanks or control bytes is not a name at all.
#pragma once

#include "platform/IPAddress.h"

#include <string>

namespace Quorvane::Dns {

// RFC 1035 section 2.3.4, in characters of the text without trailing dot: 255 bytes on the wire are
// one length byte for each label, which the dots and one more stand for, and the root's zero byte.
inline constexpr std::string::size_type maxNameLength = 253;
inline constexpr std::string::size_type maxLabelLength = 63;

// `name` in the text form in which it is asked, without its one trailing dot; empty when it is not
// to be asked: an empty or over-long name or label, a blank or control byte, an address with or
// without the brackets of a literal.
std::string askableName(std::string const& name);

// The name under which the PTR record of `address` stands (RFC 1035 section 3.5, RFC 3596 section
// 2.5). REQUIRES: `address` is not null.
std::string reverseName(IPAddress const& address);

// Text of an uncompressed wire-format name, without trailing dot. The owner of a reverse zone
// chooses these bytes, so "." and "\" in a label and whatever is not printable ASCII are escaped
// (RFC 1035 section 5.1). Empty for the root and for broken data.
std::string wireNameText(std::string const& wire);

} // namespace Quorvane::Dns
