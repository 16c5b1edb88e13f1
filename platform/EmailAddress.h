// SPDX-License-Identifier: Apache-2.0
//
// EmailAddress: one mailbox address (RFC 5322 section 3.4), or null. A plain value: copy freely,
// share read-only between threads.
#pragma once

#include "include2/Export.h"

#include <string>

namespace Quorvane {

class QV_API EmailAddress {
  public:
    // Null.
    EmailAddress() = default;

    // The first address in the value of an address header: display names, comments, groups, routes,
    // quoted local parts and literals are understood. Null when the text holds no address: "<>", an
    // empty or broken value, a group without members, a NUL byte. What has no "@" does not count as
    // an address, so that "Doe, John <john@host.example>" gives John's; nor does what has two
    // outside of quotes, because its sender would choose which of its parts is the domain. Only the
    // first 2 KiB and the first 16 commas, colons and semicolons are looked at. `lenient` accepts
    // the common deviations from the grammar that real mail shows. Safe to call from many threads.
    static EmailAddress rfc5322Parse(std::string const& text, bool lenient);

    // True: there is no address.
    bool isNull() const { return m_domain.empty() && m_localPart.empty(); }
    // Without quoting or route, letter case as in the text; empty when null.
    std::string const& localPart() const { return m_localPart; }
    // Letter case as in the text; a literal keeps its brackets; empty when null.
    std::string const& domain() const { return m_domain; }

  private:
    std::string m_localPart;
    std::string m_domain;
};

} // namespace Quorvane
