// SPDX-License-Identifier: Apache-2.0
//
// When and how each hop of a trail came, by what the hops wrote themselves. No verdict depends on
// it, and a sender may have invented it. Pure functions.
#pragma once

#include "apps/headers/ReceivedWith.h"
#include "platform/HeaderContainer.h"
#include "ScanRecord.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Quorvane {

struct HopTime {
    std::optional<std::int64_t> m_time; // seconds since 1970
    // Seconds since the nearest older hop that has a time; negative: they contradict each other.
    std::optional<std::int64_t> m_delay;
    ReceivedWith m_with;
};

// One for each hop of `trail`, which a scan of `headers` recorded. The hop that the host is about
// to add has no time yet.
std::vector<HopTime> trailTimes(std::vector<RecordedHop> const& trail,
                                HeaderContainer const& headers);

// "2 min 5 s"; "-5 s, backwards" when the hop before it claims a later time.
std::string delayText(std::int64_t seconds);

} // namespace Quorvane
