// SPDX-License-Identifier: Apache-2.0
//
// Rule tests as people write them: a TOML file with one table [[case]] for each case
// (docs/testing-rules.md). Plain values; the reader is a pure function but for the files it reads.
#pragma once

#include "apps/settings/HostSettings.h"
#include "rules/vectors/VectorTable.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Quorvane::Workshop {

// Includes both ends.
struct ConfidenceRange {
    double m_low;
    double m_high;
};

// What is not given is empty and is not checked.
struct CaseExpectation {
    std::string m_verdict;              // "spam", "ham" or "none"; always given
    std::optional<std::int32_t> m_node; // 0: no rule decides
    std::optional<std::string> m_reasons;
    std::optional<ConfidenceRange> m_confidence;
};

struct RuleCase {
    std::size_t m_line = 0;
    std::string m_name;
    // Look-ups are off unless the case gives DNS data.
    HostSettings m_settings;
    MessageFacts m_facts;
    // Exactly one of the two is given.
    std::optional<std::string> m_headers;
    std::optional<Rules::AttributeVector> m_vector;
    CaseExpectation m_expected;
};

struct CaseFile {
    std::string m_path;
    // Rule text or folder; empty when the file names none.
    std::string m_rules;
    std::vector<RuleCase> m_cases; // at least one
};

// Throws a RuleError: noInput for a file that cannot be read, badData with file, line and column
// for an error in it.
CaseFile readCaseFile(std::string const& path);

} // namespace Quorvane::Workshop
