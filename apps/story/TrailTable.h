// SPDX-License-Identifier: Apache-2.0
//
// The trail of a message as a table for people. Pure functions.
#pragma once

#include "platform/HeaderContainer.h"
#include "ScanRecord.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Quorvane {

// The places of at most `most` hops, in order. What was judged and what ended the walk comes before
// others, and newer hops before older ones.
std::vector<std::size_t> tellingHops(std::vector<RecordedHop> const& trail, std::size_t most);

// Indented lines: a heading and the hops at these places; empty without hops.
std::string trailTable(ScanRecord const& record, HeaderContainer const& headers,
                       std::vector<std::size_t> const& places);

} // namespace Quorvane
