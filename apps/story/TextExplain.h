// SPDX-License-Identifier: Apache-2.0
//
// The explanation of one scan for people: the trail as a table, the attributes, the rules that
// fired, the reason and what another verdict would have needed. Pure functions.
#pragma once

#include "apps/host/ScanHost.h"
#include "apps/story/TrailStory.h"

#include <string>
#include <vector>

namespace Quorvane {

// Indented lines, and an empty one at the end. REQUIRES: host.trace(outcome) was called. `trail` is
// empty when there is no message but a bare vector.
std::string textExplain(ScanHost const& host, ScanOutcome const& outcome,
                        std::vector<StoryHop> const& trail);

} // namespace Quorvane
