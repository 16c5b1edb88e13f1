// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/Progress.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

namespace {

struct ProgressCase {
    WorkState m_state;
    char const* m_line;
};

ProgressCase const progressCases[] = {
    {{0, 0, 0, std::nullopt}, "0 messages"},
    {{999, 2, 10, std::nullopt}, "999 messages  500/s"},
    {{1234567, 100, 50, 200}, "1,234,567 messages  12,346/s  25 %  5:00 min left"},
    {{10, 10, 999, 1000}, "10 messages  1/s  99 %  0 s left"},
    {{10, 10, 1000, 1000}, "10 messages  1/s  100 %  0 s left"},
    // Files may grow while they are read.
    {{10, 10, 2000, 1000}, "10 messages  1/s  100 %  0 s left"},
    {{10, 10, 1, 1001}, "10 messages  1/s  0 %  2:46 h left"},
    {{10, 10, 0, 0}, "10 messages  1/s"},
};

TEST(ProgressLine, TellsMessagesRateShareAndTimeLeft) {
    for (auto const& row : progressCases) {
        EXPECT_EQ(progressLine(row.m_state), row.m_line);
    }
}

} // namespace

} // namespace Quorvane::Testing
