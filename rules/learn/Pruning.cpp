// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/Pruning.h"

#include "rules/learn/Impurity.h"

#include <algorithm>
#include <limits>

namespace Quorvane::Rules {

namespace {

// Impurity and number of the leaves below a node.
struct Branch {
    double m_impurity = 0.0;
    std::size_t m_leaves = 0;
};

// What a leaf of the branch below each node earns on average; infinite for leaves. Parents stand
// before their children, so one pass from the end sums every branch.
std::vector<double> s_worths(GrownTree const& tree, ImpurityKind kind,
                             std::vector<bool> const& isLeaf) {
    auto const& nodes = tree.m_nodes;
    auto const messages = static_cast<double>(nodes[0].m_counts.total());
    std::vector<double> worths(nodes.size(), std::numeric_limits<double>::infinity());
    std::vector<Branch> branches(nodes.size());
    for (auto node = nodes.size(); node-- > 0;) {
        auto const own = summedImpurity(kind, nodes[node].m_counts);
        auto& branch = branches[node];
        if (isLeaf[node]) {
            branch = {own, 1};
            continue;
        }
        auto const& equal = branches[nodes[node].m_equal];
        auto const& other = branches[nodes[node].m_other];
        branch = {equal.m_impurity + other.m_impurity, equal.m_leaves + other.m_leaves};
        worths[node] =
            (own - branch.m_impurity) / messages / static_cast<double>(branch.m_leaves - 1);
    }
    return worths;
}

} // namespace

std::vector<double> weakestLinks(GrownTree const& tree, ImpurityKind kind) {
    auto const& nodes = tree.m_nodes;
    std::vector<double> links(nodes.size(), 0.0);
    std::vector<bool> isLeaf(nodes.size());
    std::transform(nodes.begin(), nodes.end(), isLeaf.begin(),
                   [](GrownTree::Node const& node) { return node.isLeaf(); });
    double alpha = 0.0;
    while (!isLeaf[0]) {
        auto const worths = s_worths(tree, kind, isLeaf);
        // Rounding must not let the sequence step back.
        alpha = std::max(alpha, *std::min_element(worths.begin(), worths.end()));
        for (std::size_t node = 0; node < nodes.size(); ++node) {
            bool const isBelowCut = node != 0 && isLeaf[nodes[node].m_parent];
            if (!isLeaf[node] && (isBelowCut || worths[node] <= alpha)) {
                isLeaf[node] = true;
                links[node] = alpha;
            }
        }
    }
    return links;
}

GrownTree prunedTree(GrownTree const& tree, std::vector<double> const& links, double alpha) {
    GrownTree pruned;
    std::vector<std::size_t> renumbered(tree.m_nodes.size(), GrownTree::none);
    for (std::size_t old = 0; old < tree.m_nodes.size(); ++old) {
        auto node = tree.m_nodes[old];
        if (node.m_parent != GrownTree::none) {
            auto const parent = renumbered[node.m_parent];
            if (parent == GrownTree::none || pruned.m_nodes[parent].isLeaf()) {
                continue;
            }
            auto& parentNode = pruned.m_nodes[parent];
            (parentNode.m_equal == old ? parentNode.m_equal : parentNode.m_other) =
                pruned.m_nodes.size();
            node.m_parent = parent;
        }
        if (!node.isLeaf() && links[old] <= alpha) {
            node.m_equal = node.m_other = GrownTree::none;
        }
        renumbered[old] = pruned.m_nodes.size();
        pruned.m_nodes.push_back(node);
    }
    return pruned;
}

std::vector<double> pruningSteps(std::vector<double> const& links) {
    std::vector<double> steps{0.0};
    steps.insert(steps.end(), links.begin(), links.end());
    std::sort(steps.begin(), steps.end());
    steps.erase(std::unique(steps.begin(), steps.end()), steps.end());
    return steps;
}

} // namespace Quorvane::Rules
