// SPDX-License-Identifier: Apache-2.0
//
// Sets are installed and rolled back while an engine scans and reloads: every scan, and every load
// of a host that starts just then, sees one whole set.
#include "adapter/DeepHeaderAdapter.h"
#include "rules/format/AttributeTable.h"
#include "rules/install/Installer.h"
#include "rules/model/RuleError.h"
#include "rules/model/RuleFolder.h"
#include "support/RuleFolder.h"
#include "support/SteadyScans.h"

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>

namespace Quorvane::Testing {
namespace {

namespace fs = std::filesystem;

constexpr int scanThreads = 3;
constexpr int installations = 60;
constexpr int rulesInSet = 1000;
constexpr int sets = 7; // that differ

// Set `number` says its number in the tree's confidence and in the adjustment of its elite rule.
Rules::RuleSet s_set(int number) {
    Rules::RuleSet set;
    set.m_nodes = treeOf({leaf(Attribute::hopBehindFirst, 0, markOf(number), 10.0)});
    // Many more rules, which no setting lets run, so that a load takes its time between the files.
    std::vector<EliteNodes> rules(rulesInSet, adjusting('r', 0.0));
    for (auto& rule : rules) {
        rule.level = 99;
    }
    rules.front() = adjusting('r', markOf(number));
    set.m_elite = Rules::EliteFile{eliteHeader(rulesInSet, 1, 1), rules, {}};
    return set;
}

bool s_isOneSet(DeepHeaderAnswer const& answer) {
    std::ostringstream expected;
    expected << "Adjust{ " << markOf(numberIn(answer)) << ", r} ";
    return answer.getReasons().find(expected.str()) != std::string::npos;
}

// Loads as a program does that starts now. One that pauses in the middle until its set is no longer
// kept finds nothing, and would look again.
bool s_freshLoadIsWhole(fs::path const& folder) {
    Rules::RuleSet set;
    try {
        set = Rules::readFolder(folder);
    } catch (Rules::RuleError const&) {
        return true;
    }
    double const inTree = set.m_nodes.at(3).confidence;
    double const inElite = set.m_elite.value().m_rules.at(0).weight;
    return set.version().value_or(0) > 0 && inTree == inElite;
}

// The same for an engine that a program builds now.
bool s_freshEngineIsWhole() {
    RefDeepHeaderAdapter const engine(new DeepHeaderAdapter);
    return engine->hasEliteNodes() &&
           engine->treeNodes().at(3).confidence == engine->eliteNodes().front().weight;
}

// Calls `load` until `isDone`, and counts the calls that say that something was wrong.
int s_wrongLoads(std::atomic<bool> const& isDone, std::function<bool()> const& load) {
    int wrong = 0;
    while (!isDone) {
        wrong += load() ? 0 : 1;
    }
    return wrong;
}

TEST(InstallUnderLoadTest, EveryScanAndEveryLoadSeesOneWholeSet) {
    RuleFolder const rules;
    auto const folder = rules.path(".");
    Rules::installRules(folder, s_set(0), "");
    DeepHeaderScanner().init();
    ASSERT_TRUE(DeepHeaderScanner().ready());

    SteadyScans scans(scanThreads, s_isOneSet);
    std::atomic<bool> isDone = false;
    int wrongFolders = 0;
    int wrongEngines = 0;
    std::thread reloads([&isDone] {
        s_wrongLoads(isDone, [] {
            DeepHeaderScanner().init();
            return true;
        });
    });
    std::thread folders([&] {
        wrongFolders = s_wrongLoads(isDone, [&folder] { return s_freshLoadIsWhole(folder); });
    });
    std::thread engines([&] { wrongEngines = s_wrongLoads(isDone, s_freshEngineIsWhole); });
    for (int number = 1; number <= installations; ++number) {
        Rules::installRules(folder, s_set(number % sets), "");
        if (number % 2 == 0) {
            Rules::rollBack(folder);
        }
    }
    isDone = true;
    reloads.join();
    folders.join();
    engines.join();
    EXPECT_EQ(scans.stop(), 0U);
    EXPECT_EQ(wrongFolders, 0);
    EXPECT_EQ(wrongEngines, 0);

    // The last was rolled back, and the engine takes that up when it next looks.
    DeepHeaderScanner().init();
    EXPECT_NEAR(scanOnce().confidenceDegree(), markOf((installations - 1) % sets), 1e-6);
}

} // namespace
} // namespace Quorvane::Testing
