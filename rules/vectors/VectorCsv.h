// SPDX-License-Identifier: Apache-2.0
//
// Tables of attribute vectors as CSV, as `qvscan --format csv` writes them.
//
// The first line names the columns; where it is repeated, as in tables that were joined with cat,
// it is skipped. The first column is `source`; the 38 attributes must all be there, by name and in
// any order. `label` (spam or ham), `count` (messages that had this vector) and `corpus` are
// optional; other columns are refused, since a misspelt `count` would go unnoticed. A row whose
// attributes are all empty is a message that could not be judged: it is counted apart. Errors are
// LearnErrors with file, line and column.
#pragma once

#include "rules/vectors/VectorTable.h"

#include <cstdint>
#include <functional>
#include <istream>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace Quorvane::Rules {

// Used for rows that do not say it themselves.
struct VectorCsvDefaults {
    std::optional<MailLabel> m_label; // unset: the column `label` must be there
    std::string m_corpus;
};

struct VectorCsvCounts {
    std::uint64_t m_rows = 0;
    std::uint64_t m_withoutVector = 0; // messages that could not be judged
};

// A row as it was read.
struct VectorCsvRow {
    std::string_view m_source;
    std::optional<AttributeVector> m_vector; // empty: a message that could not be judged
};

// Called now and then with the number of rows that have been read.
using RowProgress = std::function<void(std::uint64_t)>;

// Adds the rows of `input` to `table`; `name` is its name in error texts.
VectorCsvCounts readVectorCsv(std::istream& input, std::string const& name,
                              VectorCsvDefaults const& defaults, VectorTableBuilder& table,
                              RowProgress const& progress = {});

// Passes the rows of `input` on one by one. The other columns are not used, but must be well
// formed.
void readVectorRows(std::istream& input, std::string const& name,
                    std::function<void(VectorCsvRow const&)> const& sink);

// The parts of every line, without its line break: "source" and the names of the attributes; a
// field (RFC 4180); the attributes of a vector, each after a comma.
std::string csvHeader();
std::string csvField(std::string const& text);
std::string csvValues(AttributeVector const& vector);

// Writes what readVectorCsv reads back: one row for each distinct vector, label and corpus, with
// its count, and before them the messages without a vector. Rows are sorted, so equal tables give
// equal text. The shards of a large scan are combined this way before learning.
void writeVectorCsv(std::ostream& output, VectorTable const& table);

} // namespace Quorvane::Rules
