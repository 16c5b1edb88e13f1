// SPDX-License-Identifier: Apache-2.0
//
// Scans on many threads while the rules are reloaded: every scan sees one whole rule set.
#include "DeepHeaderScanner.h"
#include "LogCapture.h"
#include "support/Message.h"
#include "support/RuleFolder.h"

#include <atomic>
#include <cmath>
#include <filesystem>
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
    auto const mark = 0.5 + number / 1000.0;
    rules.writeElite(eliteHeader(1, 1, 1), {adjusting('r', mark)});
    rules.writeTree(treeOf({leaf(37, 0, mark, 10.0 + number)}));
}

bool s_isOneSet(DeepHeaderAnswer const& answer) {
    auto const number = std::lround((answer.confidenceDegree() - 0.5) * 1000.0);
    std::ostringstream expected;
    expected << "Node:{3} Confidence degree{ " << 0.5 + static_cast<double>(number) / 1000.0
             << " } Support degree{ " << 10 + number << " } IP{ 192.0.2.7 } Adjust{ "
             << 0.5 + static_cast<double>(number) / 1000.0 << ", r} ";
    return answer.getReasons() == expected.str();
}

TEST(ReloadTest, EveryScanSeesOneWholeRuleSet) {
    RuleFolder const rules;
    LogCapture log;
    DeepHeaderScanner scanner;
    s_write(rules, 0);
    scanner.init();

    std::atomic<bool> isDone = false;
    std::atomic<int> mixed = 0;
    std::atomic<int> scanned = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&] {
            Message message(received("a.example", "unknown", "192.0.2.7", "c.example"));
            message.m_settings.spamThreshold = 0.9;
            while (!isDone) {
                auto query = message.query();
                mixed += s_isOneSet(DeepHeaderScanner().postQuery(query)) ? 0 : 1;
                ++scanned;
            }
        });
    }
    for (int number = 1; number <= setCount; ++number) {
        s_write(rules, number); // nobody reads the files but the init behind it
        scanner.init();
        auto const reached = scanned.load();
        while (scanned == reached) {
            std::this_thread::yield();
        }
    }
    isDone = true;
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(mixed, 0);
    EXPECT_GE(scanned, setCount);
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
    Message message(received("a.example", "unknown", "192.0.2.7", "c.example"));
    message.m_settings.spamThreshold = 0.9;
    auto query = message.query();
    EXPECT_TRUE(s_isOneSet(DeepHeaderScanner().postQuery(query)));
}

} // namespace
} // namespace Quorvane::Testing
