// SPDX-License-Identifier: Apache-2.0
//
// RuleSet: the three rule files in memory, without the loss of one byte. Every rule tool works on
// this value: the compiler makes it, the checker and the learner read or make it, and reading and
// writing a folder (RuleFolder.h) are exact inverses of one another.
//
// A plain value: copy and move freely. What an engine would refuse can be held too, so that it can
// be shown and mended; rules/check says what is wrong with it.
#pragma once

#include "rules/format/RuleFiles.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Quorvane::Rules {

// Bytes of a file; a string because it is what streams and comparisons take.
using Bytes = std::string;

// qv2.dt.
struct EliteFile {
    // Empty when the file is shorter than a header; all of its bytes are then in m_tail.
    std::optional<EliteFileHeader> m_header;
    // Every rule that the loader reads in full, those that it then drops too. `conditionCount` is
    // kept as it stands in the file: it is negative, or the number of conditions.
    std::vector<EliteNodes> m_rules;
    // What stands after the last rule read: a cut record, a record that ends the load, or bytes
    // that no loader looks at.
    Bytes m_tail;
};

struct RuleSet {
    // The text of README, empty when there is none; version() reads it.
    std::optional<std::string> m_readme;
    // The complete records of qv.dt; record i is node i.
    std::vector<DTNode> m_nodes;
    // The bytes of an incomplete last record.
    Bytes m_treeTail;
    // Empty when there is no qv2.dt.
    std::optional<EliteFile> m_elite;

    // The version that a host reads from the README; empty when it finds none.
    std::optional<std::int32_t> version() const;
    // Gives the set a README of the usual text with this version.
    void setVersion(std::int32_t version);
};

// A node as the loader sees one that is not in the file: all bytes zero.
DTNode emptyNode();
// A header that says "first matching rule decides, the tree is not consulted", without rules.
EliteFileHeader plainEliteHeader();

} // namespace Quorvane::Rules
