// SPDX-License-Identifier: Apache-2.0
//
// One scan as text for people: its result on one line, and its explanation. Pure functions.
#pragma once

#include "platform/DeepHeaderSettings.h"
#include "rules/model/RuleNames.h"
#include "ScanRecord.h"

#include <string>

namespace Quorvane {

// Verdict, confidence, node, addresses, source and the name of what decided on one line, aligned,
// with its line break. `colour`: with the escape sequences of terminals (ECMA-48).
std::string textRecord(std::string const& source, ScanRecord const& record,
                       Rules::RuleNames const& names, bool colour);

// The trail as a table, the attributes, the rules that fired, the reason and what another verdict
// would have needed: indented lines, and an empty one at the end. REQUIRES: a record of depth
// `alternatives`.
std::string textExplain(ScanRecord const& record, DeepHeaderSettings const& settings,
                        Rules::RuleNames const& names);

} // namespace Quorvane
