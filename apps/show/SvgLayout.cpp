// SPDX-License-Identifier: Apache-2.0
#include "apps/show/SvgLayout.h"

#include <algorithm>

namespace Quorvane::Show {

namespace {

class LayoutMaker {
  public:
    explicit LayoutMaker(ShownRules const& rules) : m_rules(rules) {
        m_layout.m_places.resize(rules.m_nodes.size());
    }

    SvgLayout make() {
        place(0);
        return std::move(m_layout);
    }

  private:
    // The row of the node. The depth is bounded by the table.
    double place(std::size_t index) { // NOLINT(misc-no-recursion)
        auto const& node = m_rules.m_nodes[index];
        std::vector<double> rows;
        for (auto const& branch : node.m_branches) {
            bool const isBelow = branch.m_kind == ShownBranch::Kind::node;
            rows.push_back(isBelow ? place(branch.m_index) : nextRow());
            useColumn(node.m_depth + 1);
        }
        auto& place = m_layout.m_places[index];
        place.m_column = node.m_depth;
        useColumn(node.m_depth);
        place.m_row = rows.empty() ? nextRow() : (rows.front() + rows.back()) / 2;
        place.m_slotRows = std::move(rows);
        return place.m_row;
    }

    void useColumn(std::size_t column) {
        m_layout.m_columns = std::max(m_layout.m_columns, column + 1);
    }

    double nextRow() { return static_cast<double>(m_layout.m_rows++); }

    ShownRules const& m_rules;
    SvgLayout m_layout;
};

} // namespace

SvgLayout svgLayout(ShownRules const& rules) {
    return LayoutMaker(rules).make();
}

} // namespace Quorvane::Show
