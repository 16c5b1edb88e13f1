// SPDX-License-Identifier: Apache-2.0
//
// One line for people: verdict, confidence, node, addresses, source, aligned. Pure functions.
#pragma once

#include "ScanRecord.h"

#include <string>

namespace Quorvane {

// With its line break. `colour`: with the escape sequences of terminals (ECMA-48).
std::string textRecord(std::string const& source, ScanRecord const& record, bool colour);

} // namespace Quorvane
