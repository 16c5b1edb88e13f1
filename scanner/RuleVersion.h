// SPDX-License-Identifier: Apache-2.0
//
// The version of the rule set on disk, from the file README beside the rules.
#pragma once

#include <cstdint>

namespace Quorvane {

// Stands for "no version is known"; a version line that says -1 means the same.
inline constexpr std::int32_t noRuleVersion = -1;

// The number after the first "CF_DT_VERSION=" in a line that is not a comment. The key
// may stand anywhere in its line; text that is not a number counts as 0, and of too large a number
// the low 32 bits count. noRuleVersion when README is missing, unreadable or has no such line.
// Throws only an Exception of the file layer, while the path is built or tested.
std::int32_t readRuleVersion();

} // namespace Quorvane
