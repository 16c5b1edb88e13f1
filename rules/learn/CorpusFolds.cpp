// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/CorpusFolds.h"

#include "rules/learn/CartGrower.h"
#include "rules/learn/Impurity.h"
#include "rules/vectors/LearnError.h"

#include <cmath>
#include <numeric>

namespace Quorvane::Rules {

namespace {

// The steps of the folds differ from those of the whole tree: the geometric mean of two steps
// represents the interval in which the whole tree does not change.
double s_representative(std::vector<double> const& alphas, std::size_t step) {
    return step + 1 < alphas.size() ? std::sqrt(alphas[step] * alphas[step + 1]) : alphas[step];
}

std::vector<PruningStep> s_steps(GrownTree const& tree, ImpurityKind kind,
                                 std::vector<double> const& alphas) {
    auto const links = weakestLinks(tree, kind);
    std::vector<PruningStep> steps;
    steps.reserve(alphas.size());
    for (auto const alpha : alphas) {
        steps.push_back({alpha, prunedTree(tree, links, alpha).leafCount(), {}});
    }
    return steps;
}

// The risk of one fold at each step.
std::vector<double> s_foldRisks(VectorTable const& table, LearnSettings const& settings,
                                std::size_t corpus, std::vector<double> const& alphas) {
    auto const heldOut = table.only(corpus);
    auto const tree = growTree(table.without(corpus), settings);
    auto const links = weakestLinks(tree, settings.m_impurity);
    std::vector<double> risks;
    for (std::size_t step = 0; step < alphas.size(); ++step) {
        risks.push_back(
            brierScore(prunedTree(tree, links, s_representative(alphas, step)), heldOut));
    }
    return risks;
}

double s_mean(std::vector<double> const& values) {
    auto const sum = std::accumulate(values.begin(), values.end(), 0.0);
    return values.empty() ? 0.0 : sum / static_cast<double>(values.size());
}

// Whether `step` is worse than `best` by at most one standard error of the difference over folds.
bool s_isAsGood(PruningStep const& step, PruningStep const& best) {
    std::vector<double> differences;
    for (std::size_t fold = 0; fold < step.m_foldRisks.size(); ++fold) {
        differences.push_back(step.m_foldRisks[fold] - best.m_foldRisks[fold]);
    }
    auto const mean = s_mean(differences);
    double squares = 0.0;
    for (auto const difference : differences) {
        squares += (difference - mean) * (difference - mean);
    }
    auto const folds = static_cast<double>(differences.size());
    return mean <= std::sqrt(squares / (folds - 1.0) / folds);
}

} // namespace

double PruningStep::risk() const {
    return s_mean(m_foldRisks);
}

std::vector<std::size_t> corporaWithVectors(VectorTable const& table) {
    std::vector<std::size_t> corpora;
    for (std::size_t corpus = 0; corpus < table.corpora().size(); ++corpus) {
        if (table.totalOf(corpus).total() > 0) {
            corpora.push_back(corpus);
        }
    }
    return corpora;
}

double brierScore(GrownTree const& tree, std::vector<CountedVector> const& messages) {
    double sum = 0.0;
    double count = 0.0;
    for (auto const& row : messages) {
        auto const p = smoothedConfidence(tree.m_nodes[tree.leafOf(row.m_vector)].m_counts);
        sum += static_cast<double>(row.m_counts.m_spam) * (1.0 - p) * (1.0 - p) +
               static_cast<double>(row.m_counts.m_ham) * p * p;
        count += static_cast<double>(row.m_counts.total());
    }
    return count > 0.0 ? sum / count : 0.0;
}

std::size_t choosePruning(std::vector<PruningStep> const& steps, PruningRule rule) {
    std::size_t best = 0;
    for (std::size_t step = 1; step < steps.size(); ++step) {
        // Of equal risks the smaller tree is taken.
        if (steps[step].risk() <= steps[best].risk()) {
            best = step;
        }
    }
    if (rule == PruningRule::minimum) {
        return best;
    }
    auto step = steps.size() - 1;
    while (step > best && !s_isAsGood(steps[step], steps[best])) {
        --step;
    }
    return step;
}

PruningChoice crossValidate(VectorTable const& table, LearnSettings const& settings,
                            PruningRule rule, FoldProgress const& progress) {
    auto const corpora = corporaWithVectors(table);
    if (corpora.size() < 2) {
        throw LearnError("pruning is chosen by leaving out a corpus at a time and needs at least "
                         "two of them; name more, or give the pruning strength");
    }
    auto const tree = growTree(table.all(), settings);
    auto const alphas = pruningSteps(weakestLinks(tree, settings.m_impurity));
    PruningChoice choice{s_steps(tree, settings.m_impurity, alphas), 0};
    for (std::size_t fold = 0; fold < corpora.size(); ++fold) {
        auto const corpus = corpora[fold];
        if (progress) {
            progress(fold, corpora.size(), table.corpora()[corpus]);
        }
        auto const risks = s_foldRisks(table, settings, corpus, alphas);
        for (std::size_t step = 0; step < alphas.size(); ++step) {
            choice.m_steps[step].m_foldRisks.push_back(risks[step]);
        }
    }
    choice.m_chosen = choosePruning(choice.m_steps, rule);
    return choice;
}

} // namespace Quorvane::Rules
