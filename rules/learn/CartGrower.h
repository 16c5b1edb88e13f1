// SPDX-License-Identifier: Apache-2.0
//
// Grows a decision tree on counted vectors: at each step the node whose best split removes most
// impurity is split, until no split is worth it or the node limit is reached.
//
// Pure and single-threaded: the same vectors in any order give the same tree. The time is
// proportional to distinct vectors times attributes times depth, whatever the counts.
#pragma once

#include "rules/learn/GrownTree.h"
#include "rules/learn/LearnSettings.h"

#include <vector>

namespace Quorvane::Rules {

// A LearnError when there is nothing to learn from or the settings contradict the file format.
GrownTree growTree(std::vector<CountedVector> const& table, LearnSettings const& settings);

} // namespace Quorvane::Rules
