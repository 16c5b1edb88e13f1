// SPDX-License-Identifier: Apache-2.0
//
// Rewrites mail as a gateway that logs no reverse names would have recorded it: "from HELO (NAME
// [ADDRESS]) by" becomes "from HELO (ADDRESS) by".
//
// Rules learned only from gateways that look reverse names up take a missing one for a sign of a
// hijacked home computer. They then misjudge all mail of a site whose servers never log it.
// Training mail rewritten this way teaches them that a missing name may mean nothing.
//
// Pure; may be called from any thread.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace Quorvane::Rules {

// Says whether an address belongs to the site itself: private addresses and trusted relays.
using IsOwnRelay = std::function<bool(std::string const& address)>;

// A rewritten header section. Everything after the client in a header (other comments, the by-part,
// the date, the folding there) stays, and a header that already has the form is unchanged. Only
// what the site's own servers recorded changes: the newest Received headers, up to and including
// the first whose client is not the site's own. Older ones were written elsewhere, by servers that
// do look names up. Empty when no such header is found or its shape is unknown: the copy would then
// teach nothing.
std::optional<std::string> withoutReverseNames(std::string_view headerSection,
                                               IsOwnRelay const& isOwnRelay);

} // namespace Quorvane::Rules
