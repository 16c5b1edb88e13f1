// SPDX-License-Identifier: Apache-2.0
//
// The explanation of one scan for people: the trail as a table, the attributes, the rules that
// fired, the reason and what another verdict would have needed. Pure functions.
#pragma once

#include "platform/DeepHeaderSettings.h"
#include "ScanRecord.h"

#include <string>

namespace Quorvane {

// Indented lines, and an empty one at the end. REQUIRES: a record of depth `alternatives`.
std::string textExplain(ScanRecord const& record, DeepHeaderSettings const& settings);

} // namespace Quorvane
