// SPDX-License-Identifier: Apache-2.0
//
// Table: an HTML table in a box that scrolls by itself, by keyboard too, when it is wider than the
// page. A plain value.
#pragma once

#include <string>
#include <vector>

namespace Quorvane::Page {

struct Column {
    std::string m_name; // HTML
    bool m_isNumber = false;
};

class Table {
  public:
    // `label`: plain text for screen readers, what the table holds.
    Table(std::string const& label, std::vector<Column> const& columns);

    // HTML for each column; the first cell names the row.
    void row(std::vector<std::string> const& cells);

    std::string html() const;

  private:
    std::string m_head;
    std::vector<bool> m_isNumber;
    std::string m_rows;
};

} // namespace Quorvane::Page
