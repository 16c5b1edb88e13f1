// SPDX-License-Identifier: Apache-2.0
//
// Rule files written byte by byte mean to the rule tools what docs/rule-files.md says.
#include "rules/model/Binary.h"
#include "support/HandWrittenRules.h"

namespace Quorvane::Testing {

using namespace Rules;

namespace {

using Testing::expectHandWritten;
using Testing::handWrittenElite;
using Testing::handWrittenNode;

TEST(RuleBytesTest, ATreeNodeIsReadFieldByFieldAndWrittenBack) {
    RuleSet set;
    readTree(handWrittenNode(), set);
    ASSERT_EQ(set.m_nodes.size(), 1U);
    EXPECT_TRUE(set.m_treeTail.empty());
    expectHandWritten(set.m_nodes[0]);
    EXPECT_EQ(writeTree(set), handWrittenNode());
}

TEST(RuleBytesTest, AnEliteFileIsReadFieldByFieldAndWrittenBack) {
    auto const elite = readElite(handWrittenElite());
    ASSERT_TRUE(elite.m_header.has_value());
    expectHandWritten(*elite.m_header);
    ASSERT_EQ(elite.m_rules.size(), 2U);
    EXPECT_TRUE(elite.m_tail.empty());
    expectHandWritten(elite.m_rules[1]);
    EXPECT_EQ(writeElite(elite), handWrittenElite());
}

} // namespace
} // namespace Quorvane::Testing
