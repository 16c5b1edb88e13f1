// SPDX-License-Identifier: Apache-2.0
//
// TrailStory: the trail of a message as a person wants to see it: every hop, newest first, what the
// scan took it for, and whether our own side recorded it. The hops are read afresh from the
// headers, so telling the story leaves the record of the scan alone. Pure functions over what is
// given and the trusted relays in force.
#pragma once

#include "apps/host/ScanHost.h"
#include "platform/HeaderContainer.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Quorvane {

enum class HopRole : std::uint8_t {
    ownRelay, // cut off before the scan
    trusted,
    authenticated,
    privateAddress,
    noAddress,
    firstPublic,
    laterPublic,
    endsByIPv6,
    endsByAntiSpam,
    endsByScore,
    notLookedAt, // behind the end of the walk
    unreadable,
};

struct StoryHop {
    HopRole m_role = HopRole::unreadable;
    std::string m_address; // empty: none
    std::string m_helo;
    std::string m_reverseName;
    std::string m_by;
    // The hop that the host is about to add.
    bool m_isCurrent = false;
    // A server on our side wrote the hop down; the sender could have invented any other.
    bool m_isVouched = false;
    std::uint32_t m_score = 0; // where a score ended the walk
};

std::vector<StoryHop> tellTrail(ScanHost const& host, HeaderContainer const& headers,
                                MessageFacts const& facts);

// "trusted relay, skipped".
std::string roleText(StoryHop const& hop);

} // namespace Quorvane
