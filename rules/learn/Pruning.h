// SPDX-License-Identifier: Apache-2.0
//
// Cost-complexity pruning by the weakest link (Breiman, Friedman, Olshen, Stone 1984): what each
// leaf must earn, alpha, grows, and a branch that earns less is cut off.
//
// Pure. Alpha is impurity taken away for each leaf more, averaged over the training messages, so
// that the same alpha means the same on folds of different size.
#pragma once

#include "rules/learn/GrownTree.h"
#include "rules/learn/LearnSettings.h"

#include <vector>

namespace Quorvane::Rules {

// For each node the alpha from which on it is a leaf; 0 for leaves. Never smaller than that of any
// node below it.
std::vector<double> weakestLinks(GrownTree const& tree, ImpurityKind kind);

// The tree without the branches whose alpha is at most `alpha`, nodes renumbered in order.
GrownTree prunedTree(GrownTree const& tree, std::vector<double> const& links, double alpha);

// The alphas at which the tree changes, ascending, without those of leaves. 0 stands first: the
// tree unpruned.
std::vector<double> pruningSteps(std::vector<double> const& links);

} // namespace Quorvane::Rules
