// SPDX-License-Identifier: Apache-2.0
//
// RuleSet: the files of a rule set in memory, byte for byte. Every rule tool works on this value:
// the compiler and the learner make it, the checker reads it, and reading and writing a folder
// (RuleFolder.h) are exact inverses.
//
// A plain value. It can also hold what an engine would refuse, so that this can be shown and
// repaired; rules/check reports what is wrong.
#pragma once

#include "rules/format/RuleFiles.h"
#include "rules/model/Readme.h"

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
    // Every rule that the loader reads in full, also those that it then drops. `conditionCount` is
    // kept as it is in the file: negative, or the number of conditions.
    std::vector<EliteNodes> m_rules;
    // The bytes after the last rule read: a cut record, a record that ends the load, or bytes that
    // no loader reads.
    Bytes m_tail;
};

// A file that rules can do without: nothing that is wrong with it is an error.
struct SpareFile {
    std::optional<Bytes> m_content; // empty: there is none, or it cannot be used
    std::string m_problem;          // why it cannot be used; empty: it can, or there is none
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
    // qv.names, which RuleNames.h reads.
    SpareFile m_names;

    // The version that a host reads from the README; empty when it finds none.
    std::optional<std::int32_t> version() const {
        return m_readme ? readmeVersion(*m_readme) : std::nullopt;
    }
    // Gives the set a README of the usual text with this version.
    void setVersion(std::int32_t version) { m_readme = readmeText(version); }
};

} // namespace Quorvane::Rules
