// SPDX-License-Identifier: Apache-2.0
//
// Sets are installed and rolled back while an engine scans and reloads: every scan, and every load
// of a host that starts just then, sees one whole set.
#include "rules/format/AttributeTable.h"
#include "rules/install/Installer.h"
#include "rules/model/Binary.h"
#include "rules/model/Files.h"
#include "rules/model/Readme.h"
#include "rules/model/RuleFolder.h"
#include "support/RuleFolder.h"
#include "support/SteadyScans.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>

namespace Quorvane::Testing {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int scanThreads = 3;
constexpr int installations = 6;

// Set `number` says its number in the tree's confidence and in the adjustment of its elite rule.
Rules::RuleSet s_set(int number) {
    Rules::RuleSet set;
    set.m_nodes = treeOf({leaf(Attribute::hopBehindFirst, 0, markOf(number), 10.0)});
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

// How long the longest call of `load` took, and how many said that something was wrong.
struct Loads {
    Clock::duration m_longest{0};
    int m_wrong = 0;

    void run(std::atomic<bool> const& isDone, std::function<bool()> const& load) {
        while (!isDone) {
            auto const begin = Clock::now();
            m_wrong += load() ? 0 : 1;
            m_longest = std::max(m_longest, Clock::now() - begin);
        }
    }
};

struct Run {
    Loads m_reloads; // of the engine
    Loads m_fresh;
    std::uint64_t m_wrongScans = 0;
};

// Installs sets and rolls every other one back, while hosts load and scan.
Run s_run(fs::path const& folder, std::chrono::milliseconds settle) {
    Run run;
    SteadyScans scans(scanThreads, s_isOneSet);
    std::atomic<bool> isDone = false;
    std::thread reloads([&] {
        run.m_reloads.run(isDone, [] {
            DeepHeaderScanner().init();
            return true;
        });
    });
    std::thread fresh(
        [&] { run.m_fresh.run(isDone, [&folder] { return s_freshLoadIsWhole(folder); }); });
    for (int number = 1; number <= installations; ++number) {
        Rules::installRules(folder, s_set(number), settle);
        if (number % 2 == 0) {
            Rules::rollBack(folder, settle);
        }
    }
    isDone = true;
    reloads.join();
    fresh.join();
    run.m_wrongScans = scans.stop();
    return run;
}

// An installation waits for the loads that have begun, for a time; a machine that pauses a load for
// longer shows nothing, and the next run waits longer.
TEST(InstallUnderLoadTest, EveryScanAndEveryLoadSeesOneWholeSet) {
    RuleFolder const rules;
    auto const folder = rules.path(".");
    Rules::installRules(folder, s_set(0));
    DeepHeaderScanner().init();
    ASSERT_TRUE(DeepHeaderScanner().ready());

    auto settle = Rules::usualSettle;
    auto run = s_run(folder, settle);
    while (std::max(run.m_reloads.m_longest, run.m_fresh.m_longest) >= settle) {
        settle *= 4;
        ASSERT_LT(settle, std::chrono::minutes(1)) << "no load ends in time";
        Rules::installRules(folder, s_set(0), settle);
        DeepHeaderScanner().init(); // what was mixed goes before anyone looks
        run = s_run(folder, settle);
    }
    EXPECT_EQ(run.m_wrongScans, 0U);
    EXPECT_EQ(run.m_fresh.m_wrong, 0);

    // The last was rolled back, and the engine takes that up when it next looks.
    DeepHeaderScanner().init();
    EXPECT_NEAR(scanOnce().confidenceDegree(), markOf(installations - 1), 1e-6);
}

} // namespace
} // namespace Quorvane::Testing
