// SPDX-License-Identifier: Apache-2.0
//
// The explanation of one scan for people: the trail as a table, the attributes, the rules that
// fired, the reason and what another verdict would have needed. Pure functions.
#pragma once

#include "apps/common/ScanHost.h"
#include "platform/HeaderContainer.h"

#include <string>

namespace Quorvane {

// Indented lines, and an empty one at the end.
std::string textExplain(ScanHost const& host, HeaderContainer const& headers,
                        MessageFacts const& facts, ScanOutcome const& outcome);

} // namespace Quorvane
