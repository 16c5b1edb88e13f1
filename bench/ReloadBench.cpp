// SPDX-License-Identifier: Apache-2.0
//
// How long a scan may have to wait for a reload: the longest of many waits for the lock that every
// scan takes, alone, while the largest rules are loaded again and again, and what one load takes.
#include "DeepHeaderScanner.h"
#include "rules/format/RuleFiles.h"
#include "support/RuleFolder.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

namespace Quorvane::Bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int loads = 20;

double s_milliseconds(Clock::duration time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

void s_writeLargestRules(Testing::RuleFolder const& rules) {
    std::vector<EliteCondition> const conditions(maxEliteConditions, EliteCondition{0, 1, 0});
    std::vector<EliteNodes> const nodes(maxEliteNodes,
                                        Testing::deciding(9001, 0.9, 1.0, conditions));
    rules.writeElite(Testing::eliteHeader(maxEliteNodes, 1, 1), nodes);
    rules.writeTree(Testing::treeOf({Testing::leaf(0, 1, 0.9)}));
}

// The longest wait while `work` runs; waits go on all the time.
template<typename Work>
Clock::duration s_longestWait(Work work) {
    Clock::duration longest{};
    std::atomic<bool> isDone{false};
    std::thread waiter([&] {
        while (!isDone) {
            auto const start = Clock::now();
            Synchronized const lock(DeepHeaderScanner::m_Mutex);
            longest = std::max(longest, Clock::now() - start);
        }
    });
    work();
    isDone = true;
    waiter.join();
    return longest;
}

void s_run() {
    Testing::RuleFolder const rules;
    s_writeLargestRules(rules);
    auto const start = Clock::now();
    DeepHeaderScanner().init();
    auto const load = Clock::now() - start;
    auto const alone = s_longestWait([=] { std::this_thread::sleep_for(loads * load); });
    auto const reloading = s_longestWait([] {
        for (int i = 0; i < loads; ++i) {
            DeepHeaderScanner().init();
        }
    });
    std::printf("%12s\n", "milliseconds");
    std::printf("%12.3f  one load of %d elite rules with %d conditions each\n",
                s_milliseconds(load), maxEliteNodes, maxEliteConditions);
    std::printf("%12.3f  longest wait for the lock of scans, nothing loaded\n",
                s_milliseconds(alone));
    std::printf("%12.3f  longest wait during %d loads\n", s_milliseconds(reloading), loads);
}

} // namespace
} // namespace Quorvane::Bench

int main() {
    Quorvane::Bench::s_run();
    return 0;
}
