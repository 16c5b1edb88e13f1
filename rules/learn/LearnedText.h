// SPDX-License-Identifier: Apache-2.0
//
// What stands as a comment above a learned tree: from which mail, with which settings, how pruned.
// No date and no path: the same mail gives the same text to the byte.
#pragma once

#include "rules/learn/Learner.h"

#include <string>

namespace Quorvane::Rules {

// Lines that begin with "#", each ended.
std::string learnedComment(VectorTable const& table, LearnSettings const& settings,
                           LearnedTree const& learned);

} // namespace Quorvane::Rules
