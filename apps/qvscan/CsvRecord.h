// SPDX-License-Identifier: Apache-2.0
//
// Attribute vectors as CSV (RFC 4180, with LF): the source, then the 38 attributes by index. Pure
// functions.
#pragma once

#include "ScanRecord.h"

#include <string>

namespace Quorvane {

// "source", then the names of the attributes.
std::string csvHeader();
// The attributes are empty fields when the scan came to none: no public hop, or it failed.
std::string csvRecord(std::string const& source, ScanRecord const& record);

} // namespace Quorvane
