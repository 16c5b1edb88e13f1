// SPDX-License-Identifier: Apache-2.0
//
// The addresses that nearly all mail has, read without the mail library, whose locks all threads of
// a host share: local@domain and <local@domain>, with a name of plain words or a quoted one before
// the bracket; lists of them, of which the first counts; and "<>" and "undisclosed-recipients:;",
// which are nobody's. A pure function.
#pragma once

#include <optional>
#include <string_view>

namespace Quorvane::internal {

// Both point into the text; both are empty when the text holds no address.
struct PlainAddress {
    std::string_view m_localPart;
    std::string_view m_domain;
};

// Empty for everything else, which may well be an address.
std::optional<PlainAddress> plainAddress(std::string_view text);

} // namespace Quorvane::internal
