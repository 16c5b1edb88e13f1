// SPDX-License-Identifier: Apache-2.0
//
// The learner as a whole: a table in, a pruned tree and the account of how it came about out.
#pragma once

#include "rules/learn/CorpusFolds.h"
#include "rules/learn/GrownTree.h"
#include "rules/learn/LearnSettings.h"
#include "rules/vectors/VectorTable.h"

#include <optional>
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

// With one corpus there is nothing to leave out: the tree is then kept whole. A LearnError when the
// table is empty or a setting is out of range.
LearnedTree learnTree(VectorTable const& table, LearnSettings const& settings,
                      PruningPlan const& plan, FoldProgress const& progress = {});

} // namespace Quorvane::Rules
