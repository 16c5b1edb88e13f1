// SPDX-License-Identifier: Apache-2.0
//
// Finds the best test for one node: "attribute equals value" against "differs from it", over all
// selected attributes and all values seen at the node.
//
// Pure. Ties go to the lower attribute, then to the lower value, so the result does not depend on
// the order of the rows.
#pragma once

#include "rules/learn/LearnSettings.h"
#include "rules/vectors/VectorTable.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace Quorvane::Rules {

struct Split {
    std::size_t m_attribute = 0;
    std::int32_t m_value = 0;
    LabelCounts m_equal; // the messages whose attribute equals the value
    double m_gain = 0.0; // impurity that the split removes, summed over the messages
};

// The rows of a table that reach a node, by index.
using RowIndices = std::vector<std::size_t>;

// The percentage of the training messages that reach a node, as it is written into qv.dt.
double supportPercent(std::uint64_t messages, std::uint64_t allMessages);

// Empty when no test keeps the minimum support on both sides and gains enough. `allMessages` is the
// number of training messages of the whole tree.
std::optional<Split> bestSplit(std::vector<CountedVector> const& table, RowIndices const& rows,
                               LearnSettings const& settings, std::uint64_t allMessages);

} // namespace Quorvane::Rules
