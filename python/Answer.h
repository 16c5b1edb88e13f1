// SPDX-License-Identifier: Apache-2.0
//
// Judgement: what the rules say of one message. Answer: the same for Python, which may keep it
// longer than the rules.
#pragma once

#include "apps/host/ScanHost.h"

#include <cstdint>
#include <memory>
#include <pybind11/pybind11.h>
#include <string>
#include <vector>

namespace Quorvane::Python {

struct Judgement {
    std::string m_source;
    std::string m_verdict = "none"; // "spam", "ham" or "none"
    bool m_isJudged = false;
    std::int32_t m_node = 0;
    Rules::RuleName const* m_rule = nullptr; // of what decided; null: it has none
    double m_confidence = 0;                 // means nothing when m_node is 0
    double m_support = 0;
    double m_adjustment = 0;
    std::vector<std::string> m_addresses;
    std::string m_reasons;
    std::string m_error; // not empty: why it was not judged
};

struct Answer : Judgement {
    std::shared_ptr<void const> m_rules; // keep m_rule

    bool operator==(Answer const& other) const;
};

// Both need no interpreter, and use the memory of `judgement` again.
void takeRecord(Judgement& judgement, std::string const& source, ScanRecord const& record,
                Rules::RuleNames const& names);
void takeProblem(Judgement& judgement, std::string const& source, std::string const& problem);

void bindAnswer(pybind11::module_& module);

} // namespace Quorvane::Python
