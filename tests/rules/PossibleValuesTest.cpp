// SPDX-License-Identifier: Apache-2.0
#include "rules/check/PossibleValues.h"
#include "rules/format/AttributeTable.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

constexpr EliteCondition s_equals(std::int32_t attribute, std::int32_t value) {
    return {attribute, 0, value};
}

constexpr EliteCondition s_differs(std::int32_t attribute, std::int32_t value) {
    return {attribute, 1, value};
}

struct ValuesCase {
    char const* m_name;
    std::vector<EliteCondition> m_before;
    EliteCondition m_test;
    bool m_isPossible;
};

class PossibleValuesTest : public testing::TestWithParam<ValuesCase> {};

TEST_P(PossibleValuesTest, KnowsWhatTestsLeaveOver) {
    PossibleValues values;
    for (auto const& test : GetParam().m_before) {
        values.assume(test);
    }
    EXPECT_EQ(values.admits(GetParam().m_test), GetParam().m_isPossible);
}

// 5 takes 0, 1, 2 and 8; 15 takes 0 and 1; 2 counts; 14 takes anything; 4 is always 0.
INSTANTIATE_TEST_SUITE_P(
    Tests, PossibleValuesTest,
    testing::Values(
        ValuesCase{"AValueThatItTakes", {}, s_equals(Attribute::firstHeloDynamic, 8), true},
        ValuesCase{"AValueThatItNeverTakes", {}, s_equals(Attribute::firstHeloDynamic, 3), false},
        ValuesCase{
            "DiffersFromWhatItNeverTakes", {}, s_differs(Attribute::firstHeloDynamic, 3), true},
        ValuesCase{"DiffersFromItsOnlyValue", {}, s_differs(Attribute::reserved4, 0), false},
        ValuesCase{"ACounter", {}, s_equals(Attribute::hopsHeloNoDomain, 1000000), true},
        ValuesCase{"ACounterBelowZero", {}, s_equals(Attribute::hopsHeloNoDomain, -1), false},
        ValuesCase{"AnOpenAttribute", {}, s_equals(Attribute::firstForged, -77), true},
        ValuesCase{"TwoDifferentValues",
                   {s_equals(Attribute::firstHeloDynamic, 1)},
                   s_equals(Attribute::firstHeloDynamic, 2),
                   false},
        ValuesCase{"TheSameValueTwice",
                   {s_equals(Attribute::firstHeloDynamic, 1)},
                   s_equals(Attribute::firstHeloDynamic, 1),
                   true},
        ValuesCase{"EqualAndDifferent",
                   {s_equals(Attribute::firstHeloDynamic, 1)},
                   s_differs(Attribute::firstHeloDynamic, 1),
                   false},
        ValuesCase{"DifferentAndEqual",
                   {s_differs(Attribute::firstHeloDynamic, 1)},
                   s_equals(Attribute::firstHeloDynamic, 1),
                   false},
        ValuesCase{"AnotherAttribute",
                   {s_equals(Attribute::firstHeloDynamic, 1)},
                   s_equals(Attribute::deepHeloDynamic, 2),
                   true},
        ValuesCase{"TheLastValueLeft",
                   {s_differs(Attribute::messageIdHasDot, 0)},
                   s_equals(Attribute::messageIdHasDot, 1),
                   true},
        ValuesCase{"NoValueLeft",
                   {s_differs(Attribute::messageIdHasDot, 0)},
                   s_differs(Attribute::messageIdHasDot, 1),
                   false},
        ValuesCase{
            "NobodyLeftForAnotherAttribute",
            {s_differs(Attribute::messageIdHasDot, 0), s_differs(Attribute::messageIdHasDot, 1)},
            s_equals(Attribute::firstHeloDynamic, 1),
            false},
        ValuesCase{
            "ACounterIsNeverExhausted",
            {s_differs(Attribute::hopsHeloNoDomain, 0), s_differs(Attribute::hopsHeloNoDomain, 1)},
            s_differs(Attribute::hopsHeloNoDomain, 2),
            true}),
    [](auto const& row) { return row.param.m_name; });

TEST(PossibleValuesTest, ATestThatFailedIsTheOppositeTest) {
    PossibleValues values;
    values.assume(s_equals(Attribute::messageIdHasDot, 0), false);
    EXPECT_FALSE(values.admits(s_equals(Attribute::messageIdHasDot, 0)));
    values.assume(s_differs(Attribute::firstHeloDynamic, 8), false);
    EXPECT_FALSE(values.admits(s_equals(Attribute::firstHeloDynamic, 1)));
    EXPECT_TRUE(values.admits(s_equals(Attribute::firstHeloDynamic, 8)));
}

// Nodes may say "differs" with any number but 0.
TEST(PossibleValuesTest, AnyOtherTestNumberMeansDiffers) {
    EXPECT_FALSE(PossibleValues().admits({4, 5, 0}));
    EXPECT_TRUE(PossibleValues().admits({4, -5, 1}));
}

} // namespace
} // namespace Quorvane::Testing
