// SPDX-License-Identifier: Apache-2.0
//
// Scans on many threads while the rules are reloaded: every scan sees one whole rule set.
#include "LogCapture.h"
#include "rules/format/AttributeTable.h"
#include "support/RuleFolder.h"
#include "support/SteadyScans.h"

#include <gtest/gtest.h>
#include <sstream>
#include <thread>
#include <vector>

namespace Quorvane::Testing {
namespace {

constexpr int setCount = 40;
constexpr int threadCount = 4;

// Rule set `number`: its one leaf carries the number in its confidence and its support, and its
// elite rule in the adjustment.
void s_write(RuleFolder const& rules, int number) {
    rules.writeElite(eliteHeader(1, 1, 1), {adjusting('r', markOf(number))});
    rules.writeTree(treeOf({leaf(Attribute::hopBehindFirst, 0, markOf(number), 10.0 + number)}));
}

bool s_isOneSet(DeepHeaderAnswer const& answer) {
    auto const number = numberIn(answer);
    std::ostringstream expected;
    expected << "Node:{3} Confidence degree{ " << markOf(number) << " } Support degree{ "
             << 10 + number << " } IP{ 192.0.2.7 } Adjust{ " << markOf(number) << ", r} ";
    return answer.getReasons() == expected.str();
}

TEST(ReloadTest, EveryScanSeesOneWholeRuleSet) {
    RuleFolder const rules;
    LogCapture log;
    DeepHeaderScanner scanner;
    s_write(rules, 0);
    scanner.init();

    SteadyScans scans(threadCount, s_isOneSet);
    for (int number = 1; number <= setCount; ++number) {
        s_write(rules, number); // nobody reads the files but the init after it
        scanner.init();
        auto const reached = scans.scanned();
        while (scans.scanned() == reached) {
            std::this_thread::yield();
        }
    }
    EXPECT_EQ(scans.stop(), 0U);
    EXPECT_TRUE(log.take().empty());
}

TEST(ReloadTest, LoadsOnManyThreadsLeaveAWholeEngine) {
    RuleFolder const rules;
    s_write(rules, 7);
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([] {
            for (int j = 0; j < 10; ++j) {
                DeepHeaderScanner().init();
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(s_isOneSet(scanOnce()));
}

} // namespace
} // namespace Quorvane::Testing
