// SPDX-License-Identifier: Apache-2.0
#include "rules/check/TreeFindings.h"

#include <algorithm>
#include <iterator>

namespace Quorvane::Rules {

void TreeFindings::add(Finding::Severity severity, char const* id, std::int32_t number,
                       std::string const& problem, std::string const& advice) {
    if (m_reported.emplace(number, problem).second) {
        m_found.push_back(
            {severity, id, Finding::File::tree, number, std::nullopt, problem, advice});
    }
}

void TreeFindings::moveTo(Findings& findings) {
    std::stable_sort(m_found.begin(), m_found.end(),
                     [](Finding const& a, Finding const& b) { return a.m_number < b.m_number; });
    std::move(m_found.begin(), m_found.end(), std::back_inserter(findings));
    m_found.clear();
}

std::string nodeName(std::int32_t number) {
    return "node " + std::to_string(number);
}

} // namespace Quorvane::Rules
