// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/Learner.h"

#include "rules/learn/CartGrower.h"
#include "rules/learn/Pruning.h"
#include "rules/vectors/LearnError.h"

namespace Quorvane::Rules {

LearnedTree learnTree(VectorTable const& table, LearnSettings const& settings,
                      PruningPlan const& plan, FoldProgress const& progress) {
    LearnedTree learned;
    auto const grown = growTree(table.all(), settings);
    learned.m_grownNodes = grown.writtenSize();
    if (auto const* const alpha = std::get_if<double>(&plan)) {
        if (!(*alpha >= 0.0)) {
            throw LearnError("the pruning strength is 0 or more");
        }
        learned.m_alpha = *alpha;
    } else if (corporaWithVectors(table).size() > 1) {
        auto const rule = std::get<PruningRule>(plan);
        learned.m_choice = crossValidate(table, settings, rule, progress);
        learned.m_alpha = learned.m_choice->m_steps[learned.m_choice->m_chosen].m_alpha;
    }
    learned.m_tree = prunedTree(grown, weakestLinks(grown, settings.m_impurity), learned.m_alpha);
    return learned;
}

} // namespace Quorvane::Rules
