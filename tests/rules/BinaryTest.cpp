// SPDX-License-Identifier: Apache-2.0
//
// Where the reader cuts the files: exactly where the loader does.
#include "rules/model/Binary.h"
#include "support/EliteHeader.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

EliteFile s_elite(std::int32_t announced, std::vector<std::int32_t> const& conditionCounts) {
    EliteFile elite;
    elite.m_header = plainEliteHeader();
    elite.m_header->nodeCount = announced;
    for (auto const count : conditionCounts) {
        EliteNodes rule{};
        rule.conditionCount = count;
        rule.conditions.resize(static_cast<std::size_t>(std::max(count, 0)));
        elite.m_rules.push_back(rule);
    }
    return elite;
}

TEST(BinaryTest, AnIncompleteLastRecordIsKeptAsATail) {
    RuleSet set;
    readTree(Bytes(3 * sizeof(DTNode) + 50, 'x'), set);
    EXPECT_EQ(set.m_nodes.size(), 3U);
    EXPECT_EQ(set.m_treeTail, Bytes(50, 'x'));
}

TEST(BinaryTest, AnEmptyTreeFileHasNoNodes) {
    RuleSet set;
    readTree("", set);
    EXPECT_TRUE(set.m_nodes.empty());
    EXPECT_EQ(writeTree(set), "");
}

TEST(BinaryTest, AFileShorterThanAnEliteHeaderIsAllTail) {
    auto const elite = readElite(Bytes(31, 'h'));
    EXPECT_FALSE(elite.m_header.has_value());
    EXPECT_EQ(elite.m_tail, Bytes(31, 'h'));
}

struct EliteCase {
    char const* m_name;
    std::int32_t m_announced;
    std::vector<std::int32_t> m_conditionCounts;
    std::size_t m_cutOff;
    std::size_t m_rulesRead;
    std::size_t m_tailSize;
};

class EliteReaderTest : public testing::TestWithParam<EliteCase> {};

TEST_P(EliteReaderTest, CutsTheFileWhereTheLoaderDoes) {
    auto const& row = GetParam();
    auto bytes = writeElite(s_elite(row.m_announced, row.m_conditionCounts));
    bytes.resize(bytes.size() - row.m_cutOff);
    auto const elite = readElite(bytes);
    EXPECT_EQ(elite.m_rules.size(), row.m_rulesRead);
    EXPECT_EQ(elite.m_tail.size(), row.m_tailSize);
    EXPECT_EQ(writeElite(elite), bytes);
}

INSTANTIATE_TEST_SUITE_P(
    Files, EliteReaderTest,
    testing::Values(EliteCase{"AsAnnounced", 2, {1, 2}, 0, 2, 0},
                    EliteCase{"FewerThanAnnounced", 3, {0, 0}, 0, 2, 0},
                    EliteCase{"MoreThanAnnounced", 1, {0, 0}, 0, 1, 40},
                    EliteCase{"NegativeAnnouncement", -1, {0}, 0, 0, 40},
                    EliteCase{"CutInTheRecord", 2, {0, 0}, 1, 1, 39},
                    EliteCase{"CutInACondition", 2, {0, 2}, 1, 1, 63},
                    EliteCase{"HundredConditions", 1, {100}, 0, 1, 0},
                    EliteCase{"HundredAndOneConditions", 2, {0, 101}, 0, 1, 40 + 101 * 12},
                    EliteCase{"NegativeConditionCount", 2, {-5, 1}, 0, 2, 0},
                    EliteCase{"LastRuleRead", 6000, std::vector<std::int32_t>(5001), 0, 5001, 0},
                    EliteCase{"OneRuleTooMany", 6000, std::vector<std::int32_t>(5002), 0, 5001,
                              40}),
    [](auto const& row) { return row.param.m_name; });

} // namespace
} // namespace Quorvane::Testing
