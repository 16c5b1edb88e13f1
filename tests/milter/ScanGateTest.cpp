// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/ScanGate.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

using Milter::ScanGate;
using std::chrono::milliseconds;

TEST(ScanGateTest, LetsNoMoreInThanTheLimit) {
    ScanGate gate;
    auto const first = gate.enter(2);
    {
        auto const second = gate.enter(2);
        EXPECT_TRUE(second.isIn());
        EXPECT_FALSE(gate.enter(2).isIn());
    }
    EXPECT_TRUE(gate.enter(2).isIn());
}

TEST(ScanGateTest, KnowsWhenNobodyIsLeft) {
    ScanGate gate;
    EXPECT_TRUE(gate.waitUntilEmpty(milliseconds(0)));
    {
        auto const pass = gate.enter(1);
        auto const refused = gate.enter(1);
        EXPECT_FALSE(gate.waitUntilEmpty(milliseconds(1)));
    }
    EXPECT_TRUE(gate.waitUntilEmpty(milliseconds(0)));
}

} // namespace
} // namespace Quorvane::Testing
