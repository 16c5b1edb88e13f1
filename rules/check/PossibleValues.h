// SPDX-License-Identifier: Apache-2.0
//
// The messages that pass a number of tests: the values of each attribute that the engine can write
// and that the tests leave. A value, and cheap to copy.
#pragma once

#include "rules/format/AttributeTable.h"
#include "rules/format/RuleFiles.h"

#include <vector>

namespace Quorvane::Rules {

class PossibleValues {
  public:
    // Whether some message passes all tests so far and this one too.
    // REQUIRES: isAttribute(test.attribute), here and below.
    bool admits(EliteCondition const& test) const;
    // Whether every message that passes all tests so far passes this one.
    bool implies(EliteCondition const& test) const;
    // Whether no message passes all tests so far.
    bool isNobody() const { return m_isNobody; }
    // Keeps the messages that pass the test, or those that do not.
    void assume(EliteCondition const& test, bool holds = true);

  private:
    // The tests so far, each "equals" or "differs".
    std::vector<EliteCondition> m_tests;
    // Whether no message passes them.
    bool m_isNobody = false;
};

} // namespace Quorvane::Rules
