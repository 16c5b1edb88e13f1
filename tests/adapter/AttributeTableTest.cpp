// SPDX-License-Identifier: Apache-2.0
#include "rules/format/AttributeTable.h"

#include <gtest/gtest.h>
#include <set>
#include <string>

namespace Quorvane::Testing {
namespace {

TEST(AttributeTableTest, NamesAreDistinctAndFoundAgain) {
    std::set<std::string_view> names;
    for (auto const& facts : attributeTable) {
        EXPECT_TRUE(names.insert(facts.m_name).second) << facts.m_name;
        EXPECT_EQ(attributeIndex(facts.m_name), facts.m_index);
        EXPECT_FALSE(facts.m_meaning.empty());
    }
    EXPECT_EQ(attributeIndex("no_such_attribute"), std::nullopt);
}

TEST(AttributeTableTest, StartValuesThatAResultKeepsArePossible) {
    for (auto const& facts : attributeTable) {
        if (facts.m_start != 0) {
            EXPECT_TRUE(facts.m_values.contains(facts.m_start)) << facts.m_name;
        }
    }
}

TEST(AttributeTableTest, NobodysAttributesAreAlways0) {
    for (auto const index : {4U, 30U, 34U, 35U}) {
        EXPECT_EQ(attributeTable[index].m_writer, AttributeWriter::nobody);
        EXPECT_TRUE(attributeTable[index].m_values.contains(0));
        EXPECT_FALSE(attributeTable[index].m_values.contains(1));
    }
}

TEST(AttributeTableTest, CountersTakeEveryNumberFrom0On) {
    auto const& counter = attributeTable[Attribute::hopsReverseDynamic].m_values;
    EXPECT_TRUE(counter.contains(0));
    EXPECT_TRUE(counter.contains(10000));
    EXPECT_FALSE(counter.contains(-1));
}

TEST(AttributeTableTest, TheForgedFlagTakesWhateverTheHostGives) {
    EXPECT_TRUE(attributeTable[Attribute::firstForged].m_values.contains(-7));
}

} // namespace
} // namespace Quorvane::Testing
