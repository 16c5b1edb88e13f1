// SPDX-License-Identifier: Apache-2.0
#include "apps/story/TextTable.h"

#include "apps/text/Utf8.h"

#include <algorithm>

namespace Quorvane {

std::string textTable(std::vector<TextRow> const& rows) {
    std::vector<std::size_t> widths(rows.empty() ? 0 : rows.front().size());
    for (auto const& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], columns(row[i]));
        }
    }
    std::string text;
    for (auto const& row : rows) {
        text += "   ";
        for (std::size_t i = 0; i < row.size(); ++i) {
            bool const isLast = i + 1 == row.size();
            text += " " + (isLast ? row[i] : padded(row[i], widths[i] + 1));
        }
        text += "\n";
    }
    return text;
}

std::string textCell(std::string const& bytes) {
    return bytes.empty() ? "-" : toPrintable(bytes);
}

} // namespace Quorvane
