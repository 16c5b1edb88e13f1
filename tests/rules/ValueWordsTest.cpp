// SPDX-License-Identifier: Apache-2.0
#include "rules/format/ValueWords.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

struct WordCase {
    std::size_t m_attribute;
    std::int32_t m_value;
    char const* m_text;
};

class ValueWordsTest : public testing::TestWithParam<WordCase> {};

TEST_P(ValueWordsTest, SaysWhatTheValueMeansInTheAttribute) {
    EXPECT_EQ(valueText(GetParam().m_attribute, GetParam().m_value), GetParam().m_text);
}

INSTANTIATE_TEST_SUITE_P(Values, ValueWordsTest,
                         testing::Values(WordCase{Attribute::firstHeloIsDomain, 2, "unknown"},
                                         WordCase{Attribute::firstHeloDynamic, 2, "literal"},
                                         WordCase{Attribute::firstHeloDynamic, 8, "n/a"},
                                         WordCase{Attribute::deepHeloDynamic, 3, "not-analysed"},
                                         // Not a value of these: the number says so best.
                                         WordCase{Attribute::firstHeloDynamic, 3, "3"},
                                         WordCase{Attribute::messageIdHasDot, 2, "2"},
                                         // A counter counts.
                                         WordCase{Attribute::hopsHeloNoDomain, 1, "1"},
                                         // The caller's flag: yes, no, or whatever the caller said.
                                         WordCase{Attribute::firstForged, 1, "yes"},
                                         WordCase{Attribute::firstForged, 2, "2"},
                                         // No attribute.
                                         WordCase{38, 1, "1"},
                                         WordCase{static_cast<std::size_t>(-1), 1, "1"}));

} // namespace
} // namespace Quorvane::Testing
