// SPDX-License-Identifier: Apache-2.0
//
// Where the boxes of a tree stand: from left to right, a column for each level, a row for each end
// of the tree, a node in the middle of its children. Pure functions.
#pragma once

#include "apps/show/ShownRules.h"

#include <cstddef>
#include <vector>

namespace Quorvane::Show {

struct SvgLayout {
    struct Place {
        std::size_t m_column = 0;
        double m_row = 0.0;
        // Rows of the branches that are no nodes, by slot; the others repeat the place of the node.
        std::vector<double> m_slotRows;
    };
    std::vector<Place> m_places; // in the order of the nodes
    std::size_t m_columns = 0;
    std::size_t m_rows = 0;
};

SvgLayout svgLayout(ShownRules const& rules);

} // namespace Quorvane::Show
