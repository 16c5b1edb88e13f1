// SPDX-License-Identifier: Apache-2.0
//
// Relays that seem to be the site's own. Unless the settings name them, mail is judged by the
// site's own gateway, and nearly all of it comes out as ham. Pure functions.
#pragma once

#include "ScanRecord.h"

#include <string>

namespace Quorvane {

// Records must have depth `steps`; results point into them.

// The hop that the message was judged by, or whose IPv6 address ended the walk. Null: none.
RecordedHop const* judgedRelay(ScanRecord const& record);

// The same hop if it may be one of the site's own: its reverse name has the domain of the host that
// received from it, and does not look dynamically assigned, as those of a provider's customers do.
// A domain is what somebody registered (publicsuffix.org): "example.co.uk".
RecordedHop const* possibleOwnRelay(ScanRecord const& record);

// "gate.example.org has the domain of mx.example.org, which received from it: is it a relay of this
// site? Then add --internal 192.0.2.7"; empty when there is none.
std::string ownRelayNote(ScanRecord const& record);

} // namespace Quorvane
