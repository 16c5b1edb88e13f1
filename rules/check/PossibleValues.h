// SPDX-License-Identifier: Apache-2.0
//
// What a message can still look like after a number of tests: the values that the engine can write
// into an attribute and that the tests leave over. A value; small when copied, since paths are.
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
    // Goes on with the messages that pass the test, or with those that do not.
    void assume(EliteCondition const& test, bool holds = true);

  private:
    // The tests so far, each "equals" or "differs".
    std::vector<EliteCondition> m_tests;
    // Whether no message passes them.
    bool m_isNobody = false;
};

// The test that stands on a node.
EliteCondition testOf(DTNode const& node);

} // namespace Quorvane::Rules
