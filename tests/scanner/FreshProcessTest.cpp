// SPDX-License-Identifier: Apache-2.0
//
// Before any engine was installed, which a process sees once: a program of its own, in which no
// test installs one.
#include "DeepHeaderScanner.h"
#include "LogCapture.h"
#include "support/Message.h"
#include "support/RuleFolder.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

void s_expectNoEngine() {
    LogCapture log;
    DeepHeaderScanner scanner;
    EXPECT_FALSE(scanner.ready());
    auto query = Message(received("a.example", "unknown", "192.0.2.7", "c.example")).query();
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

TEST(FreshProcessTest, HasNoEngineAndAnswersNothing) {
    s_expectNoEngine();
}

// Version 0 is what an engine that was never installed has: nothing is newer.
TEST(FreshProcessTest, LoadsNothingWhileTheVersionIs0) {
    RuleFolder const rules;
    rules.writeTree({});
    for (auto const* readme : {"CF_DT_VERSION=0\n", "CF_DT_VERSION=\n", "CF_DT_VERSION=none\n",
                               "CF_DT_VERSION=-2\n", "CF_DT_VERSION=4294967296\n"}) {
        SCOPED_TRACE(readme);
        rules.writeReadme(readme);
        LogCapture log;
        DeepHeaderScanner().init();
        EXPECT_TRUE(log.take().empty());
        s_expectNoEngine();
    }
}

} // namespace
} // namespace Quorvane::Testing
