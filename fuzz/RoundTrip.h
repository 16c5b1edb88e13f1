// SPDX-License-Identifier: Apache-2.0
//
// Rules that engines load come back from their text byte for byte.
#pragma once

#include "Check.h"
#include "rules/language/Compiler.h"
#include "rules/language/RuleText.h"
#include "rules/model/Binary.h"

#include <string>

namespace Quorvane::Rules {

inline Bytes eliteBytes(RuleSet const& set) {
    return set.m_elite ? writeElite(*set.m_elite) : Bytes();
}

inline void checkRoundTrip(RuleSet const& set) {
    auto const text = ruleText(set);
    auto const compiled = compileRules(text);
    check(compiled.m_errors.empty(), "the text of rules compiles");
    auto const& again = compiled.m_set;
    check(writeTree(again) == writeTree(set), "the tree comes back byte for byte");
    check(again.m_elite.has_value() == set.m_elite.has_value() &&
              eliteBytes(again) == eliteBytes(set),
          "the elite file comes back byte for byte");
    check(again.m_readme == set.m_readme, "README comes back byte for byte");
    check(again.m_names.m_content == set.m_names.m_content, "the names come back byte for byte");
    check(ruleText(again) == text, "the text of a text is the same text");
}

} // namespace Quorvane::Rules
