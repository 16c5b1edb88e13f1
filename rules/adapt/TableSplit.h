// SPDX-License-Identifier: Apache-2.0
//
// Cuts counted vectors into parts of the same size and make, to learn from some and judge others.
// Messages with the same vector and label are the same to a learner, so it does not matter which of
// them goes where. Pure functions; parts have no vectors without messages.
#pragma once

#include "rules/vectors/VectorTable.h"

#include <cstddef>
#include <vector>

namespace Quorvane::Rules {

using CountedVectors = std::vector<CountedVector>;

// Deals the messages out to `parts` parts in turn, spam and ham each. The same vectors in the same
// order give the same parts.
std::vector<CountedVectors> dealtOut(CountedVectors const& vectors, std::size_t parts);

// All parts but one, as one.
CountedVectors allBut(std::vector<CountedVectors> const& parts, std::size_t leftOut);

LabelCounts sumOf(CountedVectors const& vectors);

} // namespace Quorvane::Rules
