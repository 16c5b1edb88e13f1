// SPDX-License-Identifier: Apache-2.0
//
// Before any engine was installed, which a process sees once: a program of its own.
#include "DeepHeaderScanner.h"
#include "LogCapture.h"
#include "support/Message.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

TEST(FreshProcessTest, HasNoEngineAndAnswersNothing) {
    LogCapture log;
    DeepHeaderScanner scanner;
    EXPECT_FALSE(scanner.ready());
    auto query = Message().query();
    auto const answer = scanner.postQuery(query);
    EXPECT_EQ(answer.getNode(), 0);
    EXPECT_EQ(answer.confidenceDegree(), -1.0F);
    auto const records = log.take();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].m_id, 50332195);
    EXPECT_EQ(records[0].m_reserved, 0);
    EXPECT_EQ(records[0].m_format, "%s");
    EXPECT_EQ(records[0].m_text, " ");
}

} // namespace
} // namespace Quorvane::Testing
