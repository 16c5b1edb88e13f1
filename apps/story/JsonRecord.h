// SPDX-License-Identifier: Apache-2.0
//
// The JSON record of one judged message, on one line. Programs rely on its keys and their order.
// Pure functions.
#pragma once

#include "apps/host/ScanHost.h"

#include <string>

namespace Quorvane {

// With its line break. Text is ASCII: every other character is escaped; bytes that are no UTF-8
// appear as U+0080 to U+00FF. Numbers that JSON does not know (NaN, infinities) become null.
// `explain`: with the working record; host.trace(outcome) was called then.
std::string jsonRecord(ScanHost const& host, std::string const& source, ScanOutcome const& outcome,
                       bool explain);

} // namespace Quorvane
