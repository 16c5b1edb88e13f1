// SPDX-License-Identifier: Apache-2.0
#include "rules/check/PossibleValues.h"

#include <algorithm>

namespace Quorvane::Rules {

namespace {

constexpr std::int32_t equals = 0;
constexpr std::int32_t differs = 1;

bool s_holds(EliteCondition const& test, std::int32_t value) {
    return (value == test.value) == (test.test == equals);
}

bool s_allHold(std::vector<EliteCondition> const& tests, std::int32_t value) {
    return std::all_of(tests.begin(), tests.end(),
                       [value](EliteCondition const& test) { return s_holds(test, value); });
}

// Whether one of `values` passes all of `tests`, which are about one attribute.
bool s_isPossible(std::vector<EliteCondition> const& tests, AttributeValues const& values) {
    auto const fixed = std::find_if(tests.begin(), tests.end(),
                                    [](EliteCondition const& test) { return test.test == equals; });
    if (fixed != tests.end()) {
        return values.contains(fixed->value) && s_allHold(tests, fixed->value);
    }
    // A counter or an open attribute has more values than tests can exclude.
    return values.m_isCounter || values.m_isOpen ||
           std::any_of(values.m_codes.begin(), values.m_codes.end(),
                       [&tests](std::int32_t code) { return s_allHold(tests, code); });
}

EliteCondition s_plain(EliteCondition const& test, bool holds) {
    auto const isEquality = (test.test == equals) == holds;
    return {test.attribute, isEquality ? equals : differs, test.value};
}

} // namespace

bool PossibleValues::admits(EliteCondition const& test) const {
    if (m_isNobody) {
        return false;
    }
    std::vector<EliteCondition> tests{s_plain(test, true)};
    std::copy_if(
        m_tests.begin(), m_tests.end(), std::back_inserter(tests),
        [&test](EliteCondition const& other) { return other.attribute == test.attribute; });
    return s_isPossible(tests,
                        attributeTable.at(static_cast<std::size_t>(test.attribute)).m_values);
}

void PossibleValues::assume(EliteCondition const& test, bool holds) {
    auto const plain = s_plain(test, holds);
    m_isNobody = m_isNobody || !admits(plain);
    m_tests.push_back(plain);
}

EliteCondition testOf(DTNode const& node) {
    return {node.attribute, node.test, node.testValue};
}

bool isAttribute(std::int32_t index) {
    return index >= 0 && index <= maxAttribute;
}

} // namespace Quorvane::Rules
