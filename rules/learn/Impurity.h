// SPDX-License-Identifier: Apache-2.0
//
// How mixed a set of messages is. Pure functions of exact counts: equal counts give equal results.
#pragma once

#include "rules/learn/LearnSettings.h"
#include "rules/vectors/VectorTable.h"

namespace Quorvane::Rules {

// Impurity summed over the messages: the entropy of their labels in bits, or their Gini impurity,
// times their number. 0 for a pure or an empty set.
double summedImpurity(ImpurityKind kind, LabelCounts const& counts);

// The estimated probability of spam, smoothed by Laplace's rule: (spam + 1) / (messages + 2).
double smoothedConfidence(LabelCounts const& counts);

} // namespace Quorvane::Rules
