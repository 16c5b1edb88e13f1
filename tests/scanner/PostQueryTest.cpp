// SPDX-License-Identifier: Apache-2.0
#include "DeepHeaderScanner.h"
#include "include2/DeepHeaderException.h"
#include "LogCapture.h"
#include "rules/format/AttributeTable.h"
#include "support/Message.h"
#include "support/RuleFolder.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

class PostQueryTest : public testing::Test {
  protected:
    PostQueryTest() {
        m_rules.writeTree(treeOf({leaf(Attribute::hopBehindFirst, 0, 0.97)}));
        m_scanner.init();
        m_log.take();
    }

    RuleFolder m_rules;
    LogCapture m_log;
    DeepHeaderScanner m_scanner;
};

TEST_F(PostQueryTest, GivesTheVerdictOfTheEngineInForce) {
    Message message(received("a.example", "unknown", "192.0.2.7", "c.example"));
    message.m_settings.spamThreshold = 0.9;
    auto query = message.query();
    auto const answer = m_scanner.postQuery(query);
    EXPECT_TRUE(answer.isSpam());
    EXPECT_EQ(answer.getNode(), 3);
    EXPECT_TRUE(m_log.take().empty());
}

TEST_F(PostQueryTest, AnyScannerObjectUsesTheSameEngine) {
    Message message(received("a.example", "unknown", "192.0.2.7", "c.example"));
    message.m_settings.spamThreshold = 0.9;
    auto query = message.query();
    EXPECT_TRUE(DeepHeaderScanner().postQuery(query).isSpam());
}

TEST_F(PostQueryTest, AFailedScanIsLoggedAndReadsAsNoVerdict) {
    Message message;
    message.m_headers.append(Header("Received", "standby "));
    auto query = message.query();
    auto const answer = m_scanner.postQuery(query);
    EXPECT_EQ(answer.getNode(), 0);
    EXPECT_FALSE(answer.isSpam());
    EXPECT_FALSE(answer.isHam());
    auto const records = m_log.take();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].m_id, 50332196);
    DeepHeaderException expected("Adapter", 775);
    expected.stringParameter("Error deep header scanning ");
    EXPECT_EQ(records[0].m_text, expected.asString());
}

TEST_F(PostQueryTest, NoLineOfASenderKeepsAMessageFromBeingJudged) {
    Message message("Received: standby \r\n\t\r\n" +
                    received("a.example", "unknown", "192.0.2.7", "c.example"));
    message.m_settings.spamThreshold = 0.9;
    auto query = message.query();
    EXPECT_TRUE(m_scanner.postQuery(query).isSpam());
    EXPECT_TRUE(m_log.take().empty());
}

TEST_F(PostQueryTest, AHostsExceptionIsLoggedWithItsOwnTextInside) {
    Message message;
    message.m_properties = RefMessageProperties(false);
    auto query = message.query();
    m_scanner.postQuery(query);
    auto const records = m_log.take();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].m_id, 50332196);
    EXPECT_NE(records[0].m_text.find("operator->"), std::string::npos);
    EXPECT_NE(records[0].m_text.find("Adapter:771"), std::string::npos);
}

} // namespace
} // namespace Quorvane::Testing
