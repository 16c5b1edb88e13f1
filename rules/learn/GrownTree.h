// SPDX-License-Identifier: Apache-2.0
//
// GrownTree: a learned tree inside the learner, binary and without limits on its shape.
// TreeRecords.h turns it into the records of qv.dt.
//
// A plain value. Node 0 is the root; parents come before their children.
#pragma once

#include "rules/vectors/VectorTable.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Quorvane::Rules {

struct GrownTree {
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    struct Node {
        LabelCounts m_counts;
        std::size_t m_parent = none;
        // The split; meaningful when the node has children.
        std::size_t m_attribute = 0;
        std::int32_t m_value = 0;
        std::size_t m_equal = none; // child for messages whose attribute equals the value
        std::size_t m_other = none; // child for all others
        // Whether all training messages at this node have the same value of the attribute that its
        // parent tests.
        bool m_hasOneValue = false;
        std::int32_t m_onlyValue = 0;

        bool isLeaf() const { return m_equal == none; }
    };

    std::vector<Node> m_nodes;

    std::size_t leafCount() const;
    // The leaf that a vector ends in.
    std::size_t leafOf(AttributeVector const& vector) const;

    // Children of the node in the written tree, in the order in which they are tried. A chain of
    // tests of one attribute ("is it 0? if not, is it 1? if not ...") becomes one node with a child
    // for each value, up to maxChildren.
    std::vector<std::size_t> writtenChildren(std::size_t node) const;
    // Nodes of the written tree, the root included.
    std::size_t writtenSize() const;
};

} // namespace Quorvane::Rules
