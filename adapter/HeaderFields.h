// SPDX-License-Identifier: Apache-2.0
//
// Helpers of the first stage of a scan that other programs use too. Pure functions.
#pragma once

#include "include2/Export.h"
#include "platform/EmailAddress.h"
#include "platform/Header.h"
#include "platform/MessageProperties.h"
#include "ScanRecord.h"

#include <string>

namespace Quorvane {

// Whether the header is a hop of the trail.
bool isReceivedHeader(Header const& header);

// Whether a hop of this role ends the walk along the trail.
bool endsWalk(HopRole role);

// The score of the first entry of `analysis` whose address reads exactly `ip`; when none does, that
// of its reputation table; else 0.
QV_API int s_getTVAS(ReceivedHeaderAnalysis& analysis, std::string const& ip);

// The first address of the value of an address header; null when it holds none.
QV_API EmailAddress s_createEmailAddress(std::string const& text);

} // namespace Quorvane
