// SPDX-License-Identifier: Apache-2.0
//
// The JSON record of one judged message, on one line (docs/json-record.md). Programs rely on its
// keys and their order. Text is ASCII: every other character is escaped; bytes that are not UTF-8
// appear as U+0080 to U+00FF. Numbers that JSON cannot express (NaN, infinities) become null. Pure
// functions.
#pragma once

#include "platform/DeepHeaderSettings.h"
#include "platform/HeaderContainer.h"
#include "rules/model/RuleNames.h"
#include "ScanRecord.h"

#include <string>

namespace Quorvane {

// The verdict, with its line break. `headers`: of the message; empty for a vector.
std::string jsonRecord(std::string const& source, HeaderContainer const& headers,
                       ScanRecord const& record, Rules::RuleNames const& names);

// The same with the key "explain". REQUIRES: a record of depth `alternatives`.
std::string jsonExplanation(std::string const& source, HeaderContainer const& headers,
                            ScanRecord const& record, DeepHeaderSettings const& settings,
                            Rules::RuleNames const& names);

} // namespace Quorvane
