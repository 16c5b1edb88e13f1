// SPDX-License-Identifier: Apache-2.0
//
// Reads attribute vectors from CSV, as `qvscan --format csv` writes them, into a table.
//
// The first line names the columns; where it comes again, as in tables that were joined with cat,
// it is skipped. The first column is `source`; the 38 attributes by name, in any order, must all be
// there. `label` (spam or ham), `count` (messages that had this vector) and `corpus` are optional;
// other columns are refused, since a misspelt `count` would go unnoticed.
// A row whose attributes are all empty is a message that could not be judged: it is counted apart.
// Errors are LearnErrors with file, line and column.
#pragma once

#include "rules/vectors/VectorTable.h"

#include <cstdint>
#include <functional>
#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace Quorvane::Rules {

// What holds for rows that do not say it themselves.
struct VectorCsvDefaults {
    std::optional<MailLabel> m_label; // unset: the column `label` must be there
    std::string m_corpus;
};

struct VectorCsvCounts {
    std::uint64_t m_rows = 0;
    std::uint64_t m_withoutVector = 0; // messages that could not be judged
};

// A row as it stands.
struct VectorCsvRow {
    std::string_view m_source;
    std::optional<AttributeVector> m_vector; // empty: a message that could not be judged
};

// Told now and then how many rows have been read.
using RowProgress = std::function<void(std::uint64_t)>;

// Reads `input` to its end; `name` is what messages call it.
VectorCsvCounts readVectorCsv(std::istream& input, std::string const& name,
                              VectorCsvDefaults const& defaults, VectorTableBuilder& table,
                              RowProgress const& progress = {});

// Hands over the rows of `input` one by one; of the other columns it wants nothing but that they
// are well formed.
void readVectorRows(std::istream& input, std::string const& name,
                    std::function<void(VectorCsvRow const&)> const& sink);

} // namespace Quorvane::Rules
