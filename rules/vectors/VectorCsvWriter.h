// SPDX-License-Identifier: Apache-2.0
//
// Writes a table as CSV that readVectorCsv reads back: one row for each distinct vector, label and
// corpus, with its count; before them the messages without a vector. Shards of a large scan are
// aggregated this way before learning.
#pragma once

#include "rules/vectors/VectorTable.h"

#include <ostream>
#include <string>

namespace Quorvane::Rules {

// The parts of every line, without its line break: "source" and the names of the attributes; a
// field (RFC 4180); the attributes of a vector, each after a comma.
std::string csvHeader();
std::string csvField(std::string const& text);
std::string csvValues(AttributeVector const& vector);

// Rows in sorted order, so equal tables are equal text.
void writeVectorCsv(std::ostream& output, VectorTable const& table);

} // namespace Quorvane::Rules
