// SPDX-License-Identifier: Apache-2.0
//
// Splits a raw header section (RFC 5322 section 2.2) into header fields.
//
// A value keeps its folding byte for byte, line breaks included: the parser of Received headers
// looks for them. Dropped are blanks and tabs between name and colon, blanks and tabs after the
// colon, and all blanks, tabs, CR and LF at the end of the value: they mean nothing in mail, but a
// Received value that ends in "by " cannot be parsed, and a sender could keep a message from being
// judged. A value that begins on the next line begins with that line break. A line without a colon
// that continues nothing is skipped, and so is a leading mbox "From " line, both with their
// continuation lines. NUL is an ordinary byte, and so is a CR that no LF follows.
#pragma once

#include "include2/Export.h"
#include "platform/HeaderContainer.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Quorvane {

// How much of a header section a program judges. A field takes some 200 bytes of memory besides its
// text, and who writes a message may send millions of them. The numbers are above what mail servers
// take themselves (Postfix: 50 hops, 100 KiB for a field; Sendmail: 25 hops, 32 KiB), and real mail
// has some tens of fields and less than 20 hops. HeaderReader itself knows no limit.
struct HeaderLimits {
    std::uint32_t m_maxFields = 1000;     // a message with more is not judged
    std::uint32_t m_maxBytes = 1U << 20U; // of all fields; a message with more is not judged
    std::uint32_t m_maxHops = 100;        // the newest; only they say something about the client
};

class QV_API HeaderReader {
  public:
    // The header fields of `message` up to its first empty line or its end. Bytes after the empty
    // line are not looked at. One pass; each name and value is copied once.
    static HeaderContainer read(std::string_view message);
    // The same with the first `maxHops` Received fields only.
    static HeaderContainer read(std::string_view message, std::size_t maxHops);

    // How many fields read gives. Allocates nothing.
    static std::size_t countFields(std::string_view message);

    // Length in bytes of the header section of `message`, the empty line that ends it included;
    // the length of `message` when there is no empty line.
    static std::size_t sectionLength(std::string_view message);
};

} // namespace Quorvane
