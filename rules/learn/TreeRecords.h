// SPDX-License-Identifier: Apache-2.0
//
// Writes a learned tree as the node records of qv.dt.
//
// Chains of tests of one attribute become one node with a child for each value. All children of a
// node test the same attribute; the last one is tried when no other fits:
// - When all training messages that reached it have the same value, it tests for that value. No
//   child admits a message with a value that the training mail never had there, and the walk ends
//   without a verdict: what was never seen is not judged.
// - Otherwise it tests "differs from" its neighbour's value and admits all other values, also those
//   never seen there, which are treated like the rarer values that it was learned from.
//
// Counts are 32 bits wide in the file. When there are more training messages, the counts of the
// whole tree are divided by the same power of two (rounded down, value1 at least 1); confidence and
// support come from the exact counts.
#pragma once

#include "rules/format/RuleFiles.h"
#include "rules/learn/GrownTree.h"

#include <vector>

namespace Quorvane::Rules {

// Record i is node i: two unused records, then the root, then every branch in turn (preorder). A
// LearnError when the tree does not fit into the file.
std::vector<DTNode> treeRecords(GrownTree const& tree);

} // namespace Quorvane::Rules
