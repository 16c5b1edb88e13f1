// SPDX-License-Identifier: Apache-2.0
#include "apps/page/Table.h"

#include "apps/page/Escape.h"

namespace Quorvane::Page {

Table::Table(std::string const& label, std::vector<Column> columns, Narrow narrow)
    : m_columns(std::move(columns)), m_narrow(narrow) {
    m_head = "<div class=\"scroll\" role=\"region\" tabindex=\"0\" aria-label=\"" + text(label) +
             "\">\n<table" + (narrow == Narrow::cards ? " class=\"cards\"" : "") + ">\n<thead><tr>";
    for (auto const& column : m_columns) {
        m_head += column.m_isNumber ? "<th scope=\"col\" class=\"number\">" : "<th scope=\"col\">";
        m_head += column.m_name + "</th>";
    }
    m_head += "</tr></thead>\n<tbody>\n";
}

void Table::row(std::vector<std::string> const& cells) {
    m_rows += "<tr>";
    for (std::size_t i = 0; i < cells.size(); ++i) {
        auto const& column = m_columns.at(i);
        m_rows += i == 0 ? "<th scope=\"row\"" : "<td" + cardName(column);
        m_rows += (column.m_isNumber ? " class=\"number\">" : ">") + cells[i];
        m_rows += i == 0 ? "</th>" : "</td>";
    }
    m_rows += "</tr>\n";
}

std::string Table::cardName(Column const& column) const {
    return m_narrow == Narrow::cards ? " data-name=\"" + column.m_name + '"' : "";
}

std::string Table::html() const {
    return m_head + m_rows + "</tbody>\n</table>\n</div>\n";
}

} // namespace Quorvane::Page
