// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/Progress.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

namespace {

struct ProgressCase {
    WorkState m_state;
    char const* m_line;
};

ProgressCase const progressCases[] = {
    {{"messages", 0, {}, 0, 0, {}}, "0 messages"},
    {{"messages", 999, {}, 2, 10, {}}, "999 messages  500/s"},
    {{"messages", 1234567, {}, 100, 50, 200}, "1,234,567 messages  12,346/s  25 %  5:00 min left"},
    {{"messages", 10, {}, 10, 999, 1000}, "10 messages  1/s  99 %  0 s left"},
    {{"messages", 10, {}, 10, 1000, 1000}, "10 messages  1/s  100 %  0 s left"},
    // Files may grow while they are read.
    {{"messages", 10, {}, 10, 2000, 1000}, "10 messages  1/s  100 %  0 s left"},
    {{"messages", 10, {}, 10, 1, 1001}, "10 messages  1/s  0 %  2:46 h left"},
    {{"messages", 10, {}, 10, 0, 0}, "10 messages  1/s"},
    // All is read, but not judged.
    {{"messages", 10, 40, 10, 1000, 1000}, "10 messages  1/s  25 %  30 s left"},
    {{"messages", 0, 40, 10, 1000, 1000}, "0 messages  0/s"},
    {{"messages", 40, 40, 10, 0, {}}, "40 messages  4/s  100 %  0 s left"},
    {{"learning without a (1 of 3)", {}, {}, 10, 0, 0}, "learning without a (1 of 3)"},
};

TEST(ProgressLine, TellsMessagesRateShareAndTimeLeft) {
    for (auto const& row : progressCases) {
        EXPECT_EQ(progressLine(row.m_state), row.m_line);
    }
}

} // namespace

} // namespace Quorvane::Testing
