// SPDX-License-Identifier: Apache-2.0
//
// Sets are installed and rolled back while an engine scans and reloads: every scan, and every load
// of a host that starts just then, sees one whole set.
#include "rules/install/Installer.h"
#include "rules/model/Binary.h"
#include "rules/model/Files.h"
#include "rules/model/Readme.h"
#include "rules/model/RuleFolder.h"
#include "support/RuleFolder.h"
#include "support/SteadyScans.h"

#include <atomic>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>

namespace Quorvane::Testing {
namespace {

namespace fs = std::filesystem;

constexpr int scanThreads = 3;
constexpr int installations = 6;

// Set `number` says its number in the tree's confidence and in the adjustment of its elite rule.
Rules::RuleSet s_set(int number) {
    Rules::RuleSet set;
    set.m_nodes = treeOf({leaf(37, 0, markOf(number), 10.0)});
    set.m_elite = Rules::EliteFile{eliteHeader(1, 1, 1), {adjusting('r', markOf(number))}, {}};
    return set;
}

bool s_isOneSet(DeepHeaderAnswer const& answer) {
    std::ostringstream expected;
    expected << "Adjust{ " << markOf(numberIn(answer)) << ", r} ";
    return answer.getReasons().find(expected.str()) != std::string::npos;
}

// Loads as a host does that starts now: README first, and only a version from 1 on counts.
bool s_freshLoadIsWhole(fs::path const& folder) {
    auto const readme = Rules::readFileIfThere(folder / versionFileName);
    if (!readme || Rules::readmeVersion(*readme).value_or(0) <= 0) {
        return true;
    }
    auto const elite = Rules::readElite(Rules::readFile(folder / eliteFileName));
    Rules::RuleSet set;
    Rules::readTree(Rules::readFile(folder / treeFileName), set);
    double const inTree = set.m_nodes.at(3).confidence;
    double const inElite = elite.m_rules.at(0).weight;
    return inTree == inElite;
}

TEST(InstallUnderLoadTest, EveryScanAndEveryLoadSeesOneWholeSet) {
    RuleFolder const rules;
    auto const folder = rules.path(".");
    Rules::installRules(folder, s_set(0));
    DeepHeaderScanner().init();
    ASSERT_TRUE(DeepHeaderScanner().ready());

    SteadyScans scans(scanThreads, s_isOneSet);
    std::atomic<bool> isDone = false;
    std::atomic<int> mixedLoads = 0;
    std::vector<std::thread> threads;
    threads.emplace_back([&] {
        while (!isDone) {
            DeepHeaderScanner().init();
        }
    });
    threads.emplace_back([&] {
        while (!isDone) {
            mixedLoads += s_freshLoadIsWhole(folder) ? 0 : 1;
        }
    });
    for (int number = 1; number <= installations; ++number) {
        Rules::installRules(folder, s_set(number));
        if (number % 2 == 0) {
            Rules::rollBack(folder);
        }
    }
    isDone = true;
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(scans.stop(), 0U);
    EXPECT_EQ(mixedLoads, 0);

    // The last was rolled back, and the engine takes that up when it next looks.
    DeepHeaderScanner().init();
    EXPECT_NEAR(scanOnce().confidenceDegree(), markOf(installations - 1), 1e-6);
}

} // namespace
} // namespace Quorvane::Testing
