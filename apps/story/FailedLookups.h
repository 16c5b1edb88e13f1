// SPDX-License-Identifier: Apache-2.0
//
// Look-ups that failed or came late: what a scan takes for a name that does not exist may exist.
// A record lists look-ups from depth `steps` on.
#pragma once

#include "ScanRecord.h"

namespace Quorvane {

bool hasFailed(RecordedLookup const& lookup);
bool hasFailedLookup(ScanRecord const& record);

} // namespace Quorvane
