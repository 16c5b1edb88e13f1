// SPDX-License-Identifier: Apache-2.0
//
// Chooses how far to prune by cross-validation over whole corpora: for each corpus a tree is
// learned without it and measured on it. Messages of one site resemble each other so much that
// random folds would favour trees that fit only that site.
//
// Pure, except for the progress function.
#pragma once

#include "rules/learn/LearnSettings.h"
#include "rules/learn/Pruning.h"
#include "rules/vectors/VectorTable.h"

#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

namespace Quorvane::Rules {

enum class PruningRule {
    minimum,    // the alpha of least risk
    oneStandard // the greatest alpha that is worse than the best by at most one standard error of
                // the difference; the error of the risk itself would cut to the root, since sites
                // differ from each other far more than trees do
};

// One candidate: an alpha, the size of the whole tree with it, and its risk in the folds.
struct PruningStep {
    double m_alpha = 0.0;
    std::size_t m_leaves = 0;
    // Mean squared error of the confidence (Brier score) on each corpus when it was left out.
    std::vector<double> m_foldRisks;

    // The mean over the corpora, each with the same weight.
    double risk() const;
};

struct PruningChoice {
    std::vector<PruningStep> m_steps; // alpha ascending
    std::size_t m_chosen = 0;
};

// Called before each fold: its number from 0, the number of folds, the corpus left out.
using FoldProgress = std::function<void(std::size_t, std::size_t, std::string_view)>;

// The corpora that have anything to learn from, by index: each is a fold.
std::vector<std::size_t> corporaWithVectors(VectorTable const& table);

// Mean squared difference between a tree's confidence and the labels (1 spam, 0 ham).
double brierScore(GrownTree const& tree, std::vector<CountedVector> const& messages);

// The index of the step that the rule takes. REQUIRES: `steps` is not empty.
std::size_t choosePruning(std::vector<PruningStep> const& steps, PruningRule rule);

// A LearnError when the table has fewer than two corpora with vectors.
PruningChoice crossValidate(VectorTable const& table, LearnSettings const& settings,
                            PruningRule rule, FoldProgress const& progress = {});

} // namespace Quorvane::Rules
