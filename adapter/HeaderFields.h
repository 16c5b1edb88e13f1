// SPDX-License-Identifier: Apache-2.0
//
// Helpers of the first stage of a scan that other programs use too. Pure functions.
#pragma once

#include "include2/Export.h"
#include "platform/EmailAddress.h"
#include "platform/MessageProperties.h"

#include <string>

namespace Quorvane {

// The score of the first entry of `analysis` whose address reads exactly `ip`; 0 when none does.
QV_API int s_getTVAS(ReceivedHeaderAnalysis& analysis, std::string const& ip);

// The first address of the value of an address header; null when it holds none.
QV_API EmailAddress s_createEmailAddress(std::string const& text);

} // namespace Quorvane
