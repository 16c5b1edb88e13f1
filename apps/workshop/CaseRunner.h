// SPDX-License-Identifier: Apache-2.0
//
// CaseRunner: judges the cases of rule tests and compares the results with what they expect.
//
// One object per process, one thread: each case puts its own settings in force for the process. The
// rules that the cases name are kept.
#pragma once

#include "apps/host/RuleLoader.h"
#include "apps/workshop/CaseFile.h"

#include <map>
#include <string>
#include <vector>

namespace Quorvane::Workshop {

// A difference, in words that fit after "expected" and "came".
struct CaseDifference {
    std::string m_what; // "verdict", "node", "reasons", "confidence"
    std::string m_expected;
    std::string m_came;
};

struct CaseResult {
    std::vector<CaseDifference> m_differences; // empty: passed
    std::string m_verdict;
    std::int32_t m_node = 0;
    double m_confidence = 0;
    std::string m_reasons;
    Rules::RuleName m_ruleName; // of what decided; empty: it has none
    std::string m_because;
    std::vector<std::string> m_sentences; // as RuleStory has them

    bool hasPassed() const { return m_differences.empty(); }
};

class CaseRunner {
  public:
    // Why the names of the rules cannot be used; empty: they can, or they are loaded already.
    // Throws a RuleError for rules that cannot be read or loaded.
    std::string load(std::string const& rules);

    // REQUIRES: load(rules) was called. A RuleError, with the place of the case, for settings that
    // cannot be put in force.
    CaseResult run(RuleCase const& one, std::string const& path, std::string const& rules);

  private:
    std::map<std::string, LoadedRules> m_rules; // by their path
};

} // namespace Quorvane::Workshop
