// SPDX-License-Identifier: Apache-2.0
//
// TreeLinks: the links of a tree as an engine follows them.
#pragma once

#include "rules/model/RuleSet.h"

#include <array>
#include <vector>

namespace Quorvane::Rules {

// The node table of an engine that has loaded the set.
using NodeTable = std::array<DTNode, treeTableSize>;
NodeTable loadedTable(RuleSet const& set);

// Where a node leads to.
struct NodeLinks {
    // Why the walk gives up.
    enum class End { none, leaf, noChildren, tooManyChildren, badIndex, badAttribute };

    // The children that the walk tries, in order, up to the one that it gives up at.
    std::vector<std::int32_t> m_children;
    End m_end = End::none;
    // The child for which m_end is badIndex or badAttribute.
    std::int32_t m_endChild = 0;
};

class TreeLinks {
  public:
    explicit TreeLinks(RuleSet const& set);

    // REQUIRES: number is 0..499, here and below.
    DTNode const& at(std::int32_t number) const {
        return m_table.at(static_cast<std::size_t>(number));
    }
    // Records that the file supplies, an incomplete last one included; at most 500.
    std::int32_t count() const { return m_count; }
    bool hasRoot() const { return m_count > treeRoot; }
    NodeLinks links(std::int32_t number) const;

  private:
    NodeTable m_table;
    std::int32_t m_count;
};

} // namespace Quorvane::Rules
