// SPDX-License-Identifier: Apache-2.0
#include "rules/check/PossibleValues.h"
#include "rules/format/RuleTests.h"

#include <algorithm>

namespace Quorvane::Rules {

namespace {

bool s_holds(EliteCondition const& test, std::int32_t value) {
    return (value == test.value) == isEqualityTest(test.test);
}

EliteCondition s_plain(EliteCondition const& test, bool holds) {
    auto const isEquality = isEqualityTest(test.test) == holds;
    return {test.attribute, isEquality ? Comparison::equals : Comparison::differs, test.value};
}

} // namespace

bool PossibleValues::admits(EliteCondition const& test) const {
    if (m_isNobody) {
        return false;
    }
    auto const plain = s_plain(test, true);
    auto const isEquality = [&plain](EliteCondition const& other) {
        return other.attribute == plain.attribute && isEqualityTest(other.test);
    };
    auto const allHold = [this, &plain](std::int32_t value) {
        return s_holds(plain, value) &&
               std::all_of(m_tests.begin(), m_tests.end(), [&](EliteCondition const& other) {
                   return other.attribute != plain.attribute || s_holds(other, value);
               });
    };
    auto const& values = attributeTable.at(static_cast<std::size_t>(plain.attribute)).m_values;
    auto const fixed = std::find_if(m_tests.begin(), m_tests.end(), isEquality);
    if (isEquality(plain) || fixed != m_tests.end()) {
        auto const value = isEquality(plain) ? plain.value : fixed->value;
        return values.contains(value) && allHold(value);
    }
    // A counter or an open attribute has more values than tests can exclude.
    return values.m_isCounter || values.m_isOpen ||
           std::any_of(values.m_codes.begin(), values.m_codes.end(), allHold);
}

bool PossibleValues::implies(EliteCondition const& test) const {
    return !admits(s_plain(test, false));
}

void PossibleValues::assume(EliteCondition const& test, bool holds) {
    auto const plain = s_plain(test, holds);
    m_isNobody = !admits(plain);
    m_tests.push_back(plain);
}

} // namespace Quorvane::Rules
