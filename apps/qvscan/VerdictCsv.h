// SPDX-License-Identifier: Apache-2.0
//
// Results as a table for a spreadsheet: CSV (RFC 4180) in UTF-8, without control characters. A cell
// that a spreadsheet would take for a formula begins with an apostrophe. Pure functions.
#pragma once

#include "apps/qvscan/ListedResult.h"

#include <string>

namespace Quorvane {

// Each a line with its line break.
std::string verdictCsvHeader();
std::string verdictCsvLine(ListedResult const& result);

} // namespace Quorvane
