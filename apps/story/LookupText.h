// SPDX-License-Identifier: Apache-2.0
//
// Look-ups and how they ended, in words. Pure functions.
#pragma once

#include "ScanRecord.h"

namespace Quorvane {

// For programs: "reverseName", "late".
char const* questionName(RecordedLookup::Question question);
char const* lookupName(LookupResult result);

// For people: "no answer before the deadline".
char const* lookupText(LookupResult result);

} // namespace Quorvane
