// SPDX-License-Identifier: Apache-2.0
//
// TreeFindings: findings about nodes, each once, however many paths of the tree lead to it.
#pragma once

#include "rules/check/Finding.h"

#include <set>
#include <utility>

namespace Quorvane::Rules {

class TreeFindings {
  public:
    void add(Finding::Severity severity, char const* id, std::int32_t number,
             std::string const& problem, std::string const& advice);
    // Appends what was found to `findings`, by node.
    void moveTo(Findings& findings);

  private:
    Findings m_found;
    std::set<std::pair<std::int32_t, std::string>> m_reported;
};

// "node 7".
std::string nodeName(std::int32_t number);

} // namespace Quorvane::Rules
