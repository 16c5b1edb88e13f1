// SPDX-License-Identifier: Apache-2.0
//
// Sets are installed and rolled back while an engine scans and reloads: every scan, and every load
// of a host that starts just then, sees one whole set.
#include "DeepHeaderScanner.h"
#include "rules/install/Installer.h"
#include "rules/model/Binary.h"
#include "rules/model/Files.h"
#include "rules/model/Readme.h"
#include "rules/model/RuleFolder.h"
#include "support/Message.h"
#include "support/RuleFolder.h"

#include <atomic>
#include <cmath>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>

namespace Quorvane::Testing {
namespace {

namespace fs = std::filesystem;

constexpr int scanThreads = 3;
constexpr int installations = 6;

double s_mark(int number) {
    return 0.5 + number / 1000.0;
}

// Set `number` says its number in the tree's confidence and in the adjustment of its elite rule.
Rules::RuleSet s_set(int number) {
    Rules::RuleSet set;
    set.m_nodes = treeOf({leaf(37, 0, s_mark(number), 10.0)});
    set.m_elite = Rules::EliteFile{eliteHeader(1, 1, 1), {adjusting('r', s_mark(number))}, {}};
    return set;
}

bool s_isOneSet(DeepHeaderAnswer const& answer) {
    auto const number = std::lround((answer.confidenceDegree() - 0.5) * 1000.0);
    std::ostringstream expected;
    expected << "Adjust{ " << s_mark(static_cast<int>(number)) << ", r} ";
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

    std::atomic<bool> isDone = false;
    std::atomic<int> mixed = 0;
    std::atomic<int> mixedLoads = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < scanThreads; ++i) {
        threads.emplace_back([&] {
            Message message(received("a.example", "unknown", "192.0.2.7", "c.example"));
            message.m_settings.spamThreshold = 0.9;
            while (!isDone) {
                auto query = message.query();
                mixed += s_isOneSet(DeepHeaderScanner().postQuery(query)) ? 0 : 1;
            }
        });
    }
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
    EXPECT_EQ(mixed, 0);
    EXPECT_EQ(mixedLoads, 0);

    // The last was rolled back, and the engine takes that up when it next looks.
    DeepHeaderScanner().init();
    Message message(received("a.example", "unknown", "192.0.2.7", "c.example"));
    message.m_settings.spamThreshold = 0.9;
    auto query = message.query();
    EXPECT_NEAR(DeepHeaderScanner().postQuery(query).confidenceDegree(), s_mark(installations - 1),
                1e-6);
}

} // namespace
} // namespace Quorvane::Testing
