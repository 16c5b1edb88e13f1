// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/CartGrower.h"

#include "rules/format/RuleFiles.h"
#include "rules/learn/SplitSearch.h"
#include "rules/vectors/LearnError.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

namespace Quorvane::Rules {

namespace {

// A node that could be split, with the rows that reach it.
struct Candidate {
    std::size_t m_node;
    RowIndices m_rows;
    Split m_split;
};

// In the heap the greatest gain comes first, and of equal ones the node that was made first.
bool s_comesLater(Candidate const& a, Candidate const& b) {
    if (a.m_split.m_gain != b.m_split.m_gain) {
        return a.m_split.m_gain < b.m_split.m_gain;
    }
    return a.m_node > b.m_node;
}

class Grower {
  public:
    Grower(std::vector<CountedVector> const& table, LearnSettings const& settings)
        : m_table(table), m_settings(settings) {}

    GrownTree grow() {
        RowIndices rows(m_table.size());
        std::iota(rows.begin(), rows.end(), std::size_t{0});
        GrownTree::Node root;
        for (auto const& row : m_table) {
            root.m_counts += row.m_counts;
        }
        m_messages = root.m_counts.total();
        m_tree.m_nodes.push_back(root);
        m_written.push_back({});
        consider(0, std::move(rows));
        while (!m_heap.empty()) {
            std::pop_heap(m_heap.begin(), m_heap.end(), s_comesLater);
            Candidate const next = std::move(m_heap.back());
            m_heap.pop_back();
            splitIfAffordable(next);
        }
        return std::move(m_tree);
    }

  private:
    // The place of a node in the written tree: a node that is the last child of a chain can join
    // the chain when it tests the same attribute.
    struct Written {
        std::size_t m_chainHead = GrownTree::none; // set for the last child of a chain
        int m_children = 0;                        // of a chain's head
    };

    // Room for one more child in the chain that ends in `node`, tested on `attribute`.
    bool joinsChain(std::size_t node, std::size_t attribute) const {
        auto const head = m_written[node].m_chainHead;
        return head != GrownTree::none && m_tree.m_nodes[head].m_attribute == attribute &&
               m_written[head].m_children < maxChildren;
    }

    void consider(std::size_t node, RowIndices rows) {
        auto const split = bestSplit(m_table, rows, m_settings, m_messages);
        if (split) {
            m_heap.push_back({node, std::move(rows), *split});
            std::push_heap(m_heap.begin(), m_heap.end(), s_comesLater);
        }
    }

    void splitIfAffordable(Candidate const& candidate) {
        bool const joins = joinsChain(candidate.m_node, candidate.m_split.m_attribute);
        // A node that joins has no record of its own, only those of its two children.
        int const cost = joins ? 1 : 2;
        if (m_size + cost > m_settings.m_maxNodes) {
            return;
        }
        m_size += cost;
        auto const head = joins ? m_written[candidate.m_node].m_chainHead : candidate.m_node;
        m_written[head].m_children += cost;
        auto [equalRows, otherRows] = partition(candidate);
        auto const equal = addChild(candidate, candidate.m_split.m_equal, equalRows);
        auto const all = m_tree.m_nodes[candidate.m_node].m_counts;
        auto const other = addChild(candidate, all - candidate.m_split.m_equal, otherRows);
        auto& node = m_tree.m_nodes[candidate.m_node];
        node.m_attribute = candidate.m_split.m_attribute;
        node.m_value = candidate.m_split.m_value;
        node.m_equal = equal;
        node.m_other = other;
        m_written[other].m_chainHead = head;
        consider(equal, std::move(equalRows));
        consider(other, std::move(otherRows));
    }

    std::pair<RowIndices, RowIndices> partition(Candidate const& candidate) const {
        std::pair<RowIndices, RowIndices> sides;
        for (auto const row : candidate.m_rows) {
            bool const equal = m_table[row].m_vector.at(candidate.m_split.m_attribute) ==
                               candidate.m_split.m_value;
            (equal ? sides.first : sides.second).push_back(row);
        }
        return sides;
    }

    std::size_t addChild(Candidate const& parent, LabelCounts const& counts,
                         RowIndices const& rows) {
        GrownTree::Node child;
        child.m_counts = counts;
        child.m_parent = parent.m_node;
        auto const valueOf = [&](std::size_t row) {
            return m_table[row].m_vector.at(parent.m_split.m_attribute);
        };
        child.m_onlyValue = valueOf(rows.front());
        child.m_hasOneValue = std::all_of(rows.begin(), rows.end(), [&](std::size_t row) {
            return valueOf(row) == child.m_onlyValue;
        });
        m_tree.m_nodes.push_back(child);
        m_written.push_back({});
        return m_tree.m_nodes.size() - 1;
    }

    std::vector<CountedVector> const& m_table;
    LearnSettings const& m_settings;
    GrownTree m_tree;
    std::vector<Written> m_written; // beside m_tree.m_nodes
    std::vector<Candidate> m_heap;
    std::uint64_t m_messages = 0;
    int m_size = 1;
};

} // namespace

GrownTree growTree(std::vector<CountedVector> const& table, LearnSettings const& settings) {
    if (table.empty()) {
        throw LearnError("no training messages: nothing to learn from");
    }
    checkSettings(settings);
    return Grower(table, settings).grow();
}

} // namespace Quorvane::Rules
