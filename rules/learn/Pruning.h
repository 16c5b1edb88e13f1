// SPDX-License-Identifier: Apache-2.0
//
// Cost-complexity pruning by the weakest link (Breiman, Friedman, Olshen, Stone 1984): alpha is
// what each leaf must earn. It grows step by step, and branches that earn less are cut off.
//
// Pure functions. A leaf earns the impurity that it removes, averaged over the training messages,
// so the same alpha means the same on folds of different sizes.
#pragma once

#include "rules/learn/GrownTree.h"
#include "rules/learn/LearnSettings.h"

#include <vector>

namespace Quorvane::Rules {

// For each node the alpha from which on it is a leaf; 0 for leaves. It is never smaller than that
// of a node below.
std::vector<double> weakestLinks(GrownTree const& tree, ImpurityKind kind);

// The tree without the branches whose alpha is at most `alpha`; nodes are renumbered in order.
GrownTree prunedTree(GrownTree const& tree, std::vector<double> const& links, double alpha);

// The alphas at which the tree changes, ascending. The first is 0, for the unpruned tree.
std::vector<double> pruningSteps(std::vector<double> const& links);

} // namespace Quorvane::Rules
