// SPDX-License-Identifier: Apache-2.0
//
// Table: an HTML table in a box that scrolls by itself, by keyboard too, when it is wider than the
// page. A plain value.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Quorvane::Page {

struct Column {
    std::string m_name; // plain text, ours, without characters of HTML
    bool m_isNumber = false;
};

// What a narrow screen shows: the table, scrolling below the first column, or a card for each row,
// so that no figure is out of sight.
enum class Narrow : std::uint8_t { scrolls, cards };

class Table {
  public:
    // `label`: plain text for screen readers, what the table holds.
    Table(std::string const& label, std::vector<Column> columns, Narrow narrow = Narrow::scrolls);

    // HTML for each column; the first cell names the row.
    void row(std::vector<std::string> const& cells);

    std::string html() const;

  private:
    std::string cardName(Column const& column) const;

    std::vector<Column> m_columns;
    Narrow m_narrow;
    std::string m_head;
    std::string m_rows;
};

} // namespace Quorvane::Page
