// SPDX-License-Identifier: Apache-2.0
//
// Rewrites mail as a border would have recorded it that logs no reverse names: "from HELO (NAME
// [ADDRESS]) by" becomes "from HELO (ADDRESS) by".
//
// Rules learned only from borders that look reverse names up take a missing one for a sign of a
// hijacked home computer, and then judge whole sites wrongly whose servers never log it. Training
// mail rewritten this way teaches them that a missing name may mean nothing.
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

// A Received value so rewritten; unchanged when it is already in that form. Everything after the
// client (other comments, the by-part, the date, the folding there) stays. Empty when the value
// names no client in a shape that we know.
std::optional<std::string> withoutReverseName(std::string_view receivedValue);

// A header section so rewritten. Only what the site's own servers recorded changes: the newest
// Received headers, down to and including the first whose client is not the site's own. Older ones
// were written elsewhere, by servers that do look names up. Empty when no such header is found, or
// when it is in no shape that we know: the copy would then teach nothing.
std::optional<std::string> withoutReverseNames(std::string_view headerSection,
                                               IsOwnRelay const& isOwnRelay);

} // namespace Quorvane::Rules
