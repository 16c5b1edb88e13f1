// SPDX-License-Identifier: Apache-2.0
//
// The site's own relays stand at the newest end of a trail and say nothing about the sender. What
// came from them is cut off before the scan, so that the walk begins where the message entered.
// Safe to call from many threads.
#pragma once

#include "platform/Header.h"
#include "platform/HeaderContainer.h"
#include "platform/IPPrefix.h"

#include <vector>

namespace Quorvane {

// Whether the header is a hop of the trail.
bool isReceived(Header const& header);

struct EnteringTrail {
    HeaderContainer m_headers;
    Header m_current;
    // Newest first.
    std::vector<Header> m_cutOff;
};

// Cuts off the newest hops, `current` (may be null) before those of `headers`, as long as each came
// from an address in `own`. The first hop of another origin ends it, also one without address: what
// is older than that nobody vouches for.
EnteringTrail cutOffOwnHops(HeaderContainer const& headers, Header const& current,
                            std::vector<IPPrefix> const& own);

} // namespace Quorvane
