// SPDX-License-Identifier: Apache-2.0
//
// The header of an elite file that says "the first matching rule decides, and the tree is not
// consulted", without rules.
#pragma once

#include "rules/format/RuleFiles.h"

namespace Quorvane::Testing {

inline EliteFileHeader plainEliteHeader() {
    EliteFileHeader header{};
    header.selectMode = SelectMode::first;
    return header;
}

} // namespace Quorvane::Testing
