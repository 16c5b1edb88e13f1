// SPDX-License-Identifier: Apache-2.0
//
// Rows of cells as aligned lines of text. Pure functions; cells must be fit to be shown.
#pragma once

#include <string>
#include <vector>

namespace Quorvane {

using TextRow = std::vector<std::string>;

// Columns as wide as their widest cell, in characters; the last one is not padded. Each line is
// indented and has its line break.
std::string textTable(std::vector<TextRow> const& rows);

// Text of a message as a cell: printable, "-" when it is empty.
std::string textCell(std::string const& bytes);

} // namespace Quorvane
