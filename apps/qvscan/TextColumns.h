// SPDX-License-Identifier: Apache-2.0
//
// TextColumns: results as lines of text, in columns under a heading. Never changes; safe to ask
// from many threads.
#pragma once

#include "apps/qvscan/ColumnChoice.h"
#include "apps/qvscan/ListedResult.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Quorvane {

class TextColumns {
  public:
    // `width`: of a terminal, into which the lines are fitted by cutting long cells, but never the
    // source; empty: nothing is cut. `colour`: verdicts have one.
    TextColumns(std::vector<Column> columns, std::optional<std::size_t> width, bool colour);

    // Each a line with its line break.
    std::string heading() const;
    std::string line(ListedResult const& result) const;

  private:
    std::string joined(std::vector<std::string> const& cells) const;

    std::vector<Column> m_columns;
    std::vector<std::size_t> m_widths;
    bool m_isFitted;
    bool m_hasColour;
};

} // namespace Quorvane
