// SPDX-License-Identifier: Apache-2.0
//
// The learner as a whole: it makes a pruned tree of a table, and reports how the tree was made.
#pragma once

#include "rules/learn/CorpusFolds.h"
#include "rules/learn/GrownTree.h"
#include "rules/learn/LearnSettings.h"
#include "rules/vectors/VectorTable.h"

#include <optional>
#include <string>
#include <variant>

namespace Quorvane::Rules {

// How to prune: a rule for cross-validation over corpora, or a fixed alpha; alpha 0 keeps the whole
// tree.
using PruningPlan = std::variant<PruningRule, double>;

struct LearnedTree {
    GrownTree m_tree;
    std::size_t m_grownNodes = 0; // written size before pruning
    double m_alpha = 0.0;
    // What cross-validation found; empty when it was not asked for, or there is one corpus only.
    std::optional<PruningChoice> m_choice;
};

// With one corpus there is nothing to leave out, and the tree is not pruned. A LearnError when the
// table is empty or a setting is out of range.
LearnedTree learnTree(VectorTable const& table, LearnSettings const& settings,
                      PruningPlan const& plan, FoldProgress const& progress = {});

// The comment above a learned tree, lines that begin with "#": from which mail it was learned, with
// which settings, and how it was pruned. No date and no path: the same mail gives the same text.
std::string learnedComment(VectorTable const& table, LearnSettings const& settings,
                           LearnedTree const& learned);

} // namespace Quorvane::Rules
