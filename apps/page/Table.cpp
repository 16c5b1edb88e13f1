// SPDX-License-Identifier: Apache-2.0
#include "apps/page/Table.h"

#include "apps/page/Escape.h"

namespace Quorvane::Page {

Table::Table(std::string const& label, std::vector<Column> const& columns)
    : m_head("<div class=\"scroll\" role=\"region\" tabindex=\"0\" aria-label=\"" + text(label) +
             "\">\n<table>\n<thead><tr>") {
    for (auto const& column : columns) {
        m_head += column.m_isNumber ? "<th scope=\"col\" class=\"number\">" : "<th scope=\"col\">";
        m_head += column.m_name + "</th>";
        m_isNumber.push_back(column.m_isNumber);
    }
    m_head += "</tr></thead>\n<tbody>\n";
}

void Table::row(std::vector<std::string> const& cells) {
    m_rows += "<tr>";
    for (std::size_t i = 0; i < cells.size(); ++i) {
        std::string const name = i == 0 ? "th scope=\"row\"" : "td";
        m_rows += '<' + name + (m_isNumber.at(i) ? " class=\"number\">" : ">") + cells[i] +
                  (i == 0 ? "</th>" : "</td>");
    }
    m_rows += "</tr>\n";
}

std::string Table::html() const {
    return m_head + m_rows + "</tbody>\n</table>\n</div>\n";
}

} // namespace Quorvane::Page
