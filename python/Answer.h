// SPDX-License-Identifier: Apache-2.0
//
// Answer: what the rules say of one message, for Python. A plain value.
#pragma once

#include "apps/host/ScanHost.h"

#include <cstdint>
#include <pybind11/pybind11.h>
#include <string>
#include <vector>

namespace Quorvane::Python {

struct Answer {
    std::string m_source;
    std::string m_verdict = "none"; // "spam", "ham" or "none"
    bool m_isJudged = false;
    std::int32_t m_node = 0;
    Rules::RuleName m_rule;  // of what decided; empty: it has none
    double m_confidence = 0; // means nothing when m_node is 0
    double m_support = 0;
    double m_adjustment = 0;
    std::vector<std::string> m_addresses;
    std::string m_reasons;
    std::string m_error; // not empty: why it was not judged

    bool operator==(Answer const&) const = default;
};

// Needs no interpreter.
Answer answerOf(std::string source, ScanRecord const& record, Rules::RuleNames const& names);
Answer problemOf(std::string source, std::string problem);

void bindAnswer(pybind11::module_& module);

} // namespace Quorvane::Python
