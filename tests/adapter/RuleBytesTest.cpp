// SPDX-License-Identifier: Apache-2.0
//
// Rule files written byte by byte mean to the engine what docs/rule-files.md says.
#include "Engine.h"
#include "rules/format/AttributeTable.h"
#include "support/HandWrittenRules.h"

namespace Quorvane::Testing {
namespace {

using RuleBytesTest = EngineTest;

constexpr std::size_t nodeLength = 92;

// Node 3 is the one written by hand; nodes 0 and 1 are zero, and the root has no child but node 3.
std::string s_tree() {
    std::string root(nodeLength, '\0');
    root[20] = 3; // the first child
    root[60] = 1; // the child count
    return std::string(2 * nodeLength, '\0') + root + handWrittenNode();
}

TEST_F(RuleBytesTest, ATreeNodeIsReadFieldByField) {
    m_rules.writeFile(treeFileName, s_tree());
    expectHandWritten(engine().treeNodes()[3]);
}

TEST_F(RuleBytesTest, ATreeNodeDecidesAsItsBytesSay) {
    m_rules.writeFile(treeFileName, s_tree());
    Message message;
    message.m_settings.spamThreshold = 0.9;
    message.m_settings.hamThreshold = 0.9;
    auto query = message.query();
    DeepHeaderAnswerImpl answer;
    MsgProperties props;
    props.attributes[Attribute::messageIdMatchesHelo] = 19; // what the node's test rules out
    engine().getResults(answer, query, props);
    EXPECT_EQ(answer.m_node, 0);
    props.attributes[Attribute::messageIdMatchesHelo] = 20;
    engine().getResults(answer, query, props);
    EXPECT_EQ(answer.m_node, 3);
    EXPECT_EQ(answer.m_nodeValue1, 49);
    EXPECT_EQ(answer.m_nodeValue2, 50);
    EXPECT_EQ(answer.m_nodeValue3, 51);
    EXPECT_EQ(answer.m_nodeFlag, 21);
    EXPECT_EQ(answer.m_confidenceDegree, 0.875);
    EXPECT_EQ(answer.m_supportDegree, 12.5);
}

TEST_F(RuleBytesTest, AnEliteFileIsReadFieldByField) {
    m_rules.writeFile(eliteFileName, handWrittenElite());
    expectHandWritten(engine().eliteHeader());
    ASSERT_EQ(engine().eliteNodes().size(), 2U);
    expectHandWritten(engine().eliteNodes().back());
}

} // namespace
} // namespace Quorvane::Testing
