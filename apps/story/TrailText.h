// SPDX-License-Identifier: Apache-2.0
//
// What the scan made of a hop, in words. Pure functions.
#pragma once

#include "ScanRecord.h"

#include <string>

namespace Quorvane {

// "trusted relay, skipped".
std::string roleText(RecordedHop const& hop);

// The name of a role for programs: "trusted", "firstPublic".
char const* roleName(HopRole role);

} // namespace Quorvane
