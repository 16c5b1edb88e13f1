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

class LinkFinder {
  public:
    LinkFinder(GrownTree const& tree, ImpurityKind kind)
        : m_tree(tree), m_kind(kind), m_links(tree.m_nodes.size(), 0.0),
          m_isCut(tree.m_nodes.size(), false), m_branches(tree.m_nodes.size()) {}

    std::vector<double> find() {
        double alpha = 0.0;
        while (!isLeaf(0)) {
            sumBranches();
            // Rounding must not let the sequence step back.
            alpha = std::max(alpha, weakest());
            cut(alpha);
        }
        return std::move(m_links);
    }

  private:
    bool isLeaf(std::size_t node) const { return m_isCut[node] || m_tree.m_nodes[node].isLeaf(); }

    double ownImpurity(std::size_t node) const {
        return summedImpurity(m_kind, m_tree.m_nodes[node].m_counts);
    }

    // Children stand after their parents: one pass from the end sums every branch.
    void sumBranches() {
        for (auto node = m_tree.m_nodes.size(); node-- > 0;) {
            if (isLeaf(node)) {
                m_branches[node] = {ownImpurity(node), 1};
                continue;
            }
            auto const& equal = m_branches[m_tree.m_nodes[node].m_equal];
            auto const& other = m_branches[m_tree.m_nodes[node].m_other];
            m_branches[node] = {equal.m_impurity + other.m_impurity,
                                equal.m_leaves + other.m_leaves};
        }
    }

    // What a leaf of the branch earns on average.
    double worth(std::size_t node) const {
        auto const& branch = m_branches[node];
        auto const messages = static_cast<double>(m_tree.m_nodes[0].m_counts.total());
        return (ownImpurity(node) - branch.m_impurity) / messages /
               static_cast<double>(branch.m_leaves - 1);
    }

    // The least worth among the branches that still hang on the tree.
    double weakest() const {
        double least = std::numeric_limits<double>::infinity();
        forEachBranch(0, [&](std::size_t node) { least = std::min(least, worth(node)); });
        return least;
    }

    void cut(double alpha) {
        std::vector<std::size_t> weak;
        forEachBranch(0, [&](std::size_t node) {
            if (worth(node) <= alpha) {
                weak.push_back(node);
            }
        });
        for (auto const node : weak) {
            forEachBranch(node, [&](std::size_t below) { m_links[below] = alpha; });
            m_isCut[node] = true;
        }
    }

    // Calls `visit` for every inner node from `top` downwards. A branch cut meanwhile is left out.
    template<typename Visit>
    void forEachBranch(std::size_t top, Visit visit) const {
        std::vector<std::size_t> open{top};
        while (!open.empty()) {
            auto const node = open.back();
            open.pop_back();
            if (isLeaf(node)) {
                continue;
            }
            visit(node);
            open.push_back(m_tree.m_nodes[node].m_other);
            open.push_back(m_tree.m_nodes[node].m_equal);
        }
    }

    GrownTree const& m_tree;
    ImpurityKind m_kind;
    std::vector<double> m_links;
    std::vector<bool> m_isCut;
    std::vector<Branch> m_branches;
};

} // namespace

std::vector<double> weakestLinks(GrownTree const& tree, ImpurityKind kind) {
    return LinkFinder(tree, kind).find();
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
