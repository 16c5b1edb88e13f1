// SPDX-License-Identifier: Apache-2.0
#include "rules/install/Installer.h"

#include "ErrorKind.h"
#include "rules/model/Binary.h"
#include "rules/model/Files.h"
#include "rules/model/RuleFolder.h"
#include "support/EliteHeader.h"
#include "support/TemporaryFolder.h"

#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

// Nobody loads in these tests, so there is nothing to wait for.
constexpr milliseconds noSettle{0};

// Set `mark` says so in all of its files; odd ones have no elite file.
RuleSet s_set(std::int32_t mark, std::optional<std::int32_t> version = std::nullopt) {
    RuleSet set;
    if (version) {
        set.setVersion(*version);
    }
    set.m_nodes.resize(4, DTNode{});
    set.m_nodes[3].value1 = mark;
    if (mark % 2 == 0) {
        set.m_elite = EliteFile{plainEliteHeader(), {}, {}};
        set.m_elite->m_header->reserved1 = mark;
    }
    return set;
}

// The mark of the whole set in `folder`; 0 when its files do not belong together.
std::int32_t s_markIn(fs::path const& folder) {
    auto const set = readFolder(folder);
    auto const mark = set.m_nodes.size() == 4 ? set.m_nodes[3].value1 + 0 : 0;
    auto const isWhole = set.m_elite ? set.m_elite->m_header->reserved1 == mark : mark % 2 != 0;
    return isWhole ? mark : 0;
}

class InstallerTest : public testing::Test {
  protected:
    std::int32_t install(RuleSet const& set) {
        return installRules(m_rules, set, noSettle).m_version;
    }
    std::optional<std::int32_t> version() const { return readFolder(m_rules).version(); }

    Testing::TemporaryFolder m_folder;
    fs::path m_rules = m_folder.path() / "var" / "rules";
};

TEST_F(InstallerTest, TheFirstSetMakesTheFolderAndGetsItsOwnVersionOrOne) {
    EXPECT_EQ(install(s_set(1)), 1);
    EXPECT_EQ(s_markIn(m_rules), 1);
    Testing::TemporaryFolder const other;
    EXPECT_EQ(installRules(other.path(), s_set(1, 12), noSettle).m_version, 12);
}

TEST_F(InstallerTest, TheVersionGrowsByOneUnlessTheSetsOwnIsGreater) {
    install(s_set(1, 7));
    EXPECT_EQ(install(s_set(2, 3)), 8);
    EXPECT_EQ(install(s_set(3, 8)), 9);
    EXPECT_EQ(install(s_set(4, 20)), 20);
    EXPECT_EQ(version(), 20);
}

TEST_F(InstallerTest, TheSetBeforeIsKeptWhole) {
    install(s_set(1));
    auto const done = installRules(m_rules, s_set(2), noSettle);
    EXPECT_EQ(done.m_previous, 1);
    EXPECT_EQ(s_markIn(m_rules), 2);
    EXPECT_EQ(s_markIn(m_rules / "previous"), 1);
    EXPECT_EQ(readFolder(m_rules / "previous").version(), 1);
}

TEST_F(InstallerTest, AnEliteFileOfTheSetBeforeDoesNotStay) {
    install(s_set(2));
    install(s_set(3));
    EXPECT_FALSE(fs::exists(m_rules / eliteFileName));
}

TEST_F(InstallerTest, RollingBackBringsThePreviousSetWithAVersionThatHostsTakeUp) {
    install(s_set(1, 5));
    install(s_set(2));
    EXPECT_EQ(rollBack(m_rules, noSettle).m_version, 7);
    EXPECT_EQ(s_markIn(m_rules), 1);
    EXPECT_EQ(version(), 7);
}

TEST_F(InstallerTest, RollingBackTwiceLeadsBack) {
    install(s_set(1));
    install(s_set(2));
    rollBack(m_rules, noSettle);
    EXPECT_EQ(rollBack(m_rules, noSettle).m_version, 4);
    EXPECT_EQ(s_markIn(m_rules), 2);
}

TEST_F(InstallerTest, NothingButTheFilesAndThePreviousSetIsLeftInTheFolder) {
    install(s_set(2));
    install(s_set(4));
    install(s_set(6));
    std::set<std::string> names;
    for (auto const& entry : fs::directory_iterator(m_rules)) {
        names.insert(entry.path().filename());
    }
    EXPECT_EQ(names, (std::set<std::string>{"README", "previous", "qv.dt", "qv2.dt"}));
}

TEST_F(InstallerTest, AFolderWithoutAVersionIsTakenOver) {
    writeFolder(m_rules, s_set(1));
    EXPECT_EQ(install(s_set(2)), 1);
    EXPECT_EQ(s_markIn(m_rules / "previous"), 1);
}

TEST_F(InstallerTest, WithoutAPreviousSetThereIsNothingToRollBackTo) {
    EXPECT_EQ(kindOf([&] { rollBack(m_rules, noSettle); }), RuleError::Kind::noInput);
    install(s_set(1));
    EXPECT_EQ(kindOf([&] { rollBack(m_rules, noSettle); }), RuleError::Kind::noInput);
    EXPECT_EQ(s_markIn(m_rules), 1);
}

TEST_F(InstallerTest, TheGreatestVersionCannotBeFollowed) {
    install(s_set(1, std::numeric_limits<std::int32_t>::max()));
    EXPECT_EQ(kindOf([&] { install(s_set(2)); }), RuleError::Kind::badRules);
    EXPECT_EQ(s_markIn(m_rules), 1);
}

TEST_F(InstallerTest, AfterAFailureTheOldSetIsInForce) {
    install(s_set(1, 5));
    fs::create_directory(m_rules / ".previous.new");
    fs::create_directory(m_rules / eliteFileName); // no file can be renamed over it
    EXPECT_ANY_THROW(install(s_set(2)));
    fs::remove(m_rules / eliteFileName);
    EXPECT_EQ(s_markIn(m_rules), 1);
    EXPECT_EQ(version(), 5);
}

TEST_F(InstallerTest, InstallationsAtTheSameTimeWaitForOneAnother) {
    install(s_set(2));
    std::vector<std::thread> threads;
    for (std::int32_t mark = 3; mark < 7; ++mark) {
        threads.emplace_back([this, mark] {
            for (int i = 0; i < 5; ++i) {
                installRules(m_rules, s_set(mark), milliseconds(1));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(version(), 21);
    EXPECT_NE(s_markIn(m_rules), 0);
    EXPECT_NE(s_markIn(m_rules / "previous"), 0);
}

// Begins an installation of set 3 in a process of its own and returns when its gate is closed.
pid_t s_beginInstallation(fs::path const& folder, milliseconds settle) {
    auto const child = ::fork();
    if (child == 0) {
        installRules(folder, s_set(3), settle);
        ::_exit(0);
    }
    while (readFolder(folder).version() != 0) {
        std::this_thread::yield();
    }
    return child;
}

int s_statusOf(pid_t child) {
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return status;
}

TEST_F(InstallerTest, AnInstallationThatWasKilledIsMendedByTheNext) {
    install(s_set(1, 5));
    auto const child = s_beginInstallation(m_rules, std::chrono::minutes(5));
    ::kill(child, SIGKILL);
    s_statusOf(child);
    EXPECT_EQ(version(), 0);
    EXPECT_EQ(install(s_set(4)), 6);
    EXPECT_EQ(s_markIn(m_rules), 4);
    // What stood there when it was killed may be half of two sets, and is not kept.
    EXPECT_EQ(s_markIn(m_rules / "previous"), 1);
}

TEST_F(InstallerTest, AnInstallationThatWasKilledCanBeRolledBack) {
    install(s_set(1, 5));
    auto const child = s_beginInstallation(m_rules, std::chrono::minutes(5));
    ::kill(child, SIGKILL);
    s_statusOf(child);
    EXPECT_EQ(rollBack(m_rules, noSettle).m_version, 6);
    EXPECT_EQ(s_markIn(m_rules), 1);
}

TEST_F(InstallerTest, ASignalToEndWaitsUntilTheSetIsInForce) {
    install(s_set(1, 5));
    auto const child = s_beginInstallation(m_rules, milliseconds(300));
    ::kill(child, SIGTERM);
    auto const status = s_statusOf(child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
    EXPECT_EQ(version(), 6);
    EXPECT_EQ(s_markIn(m_rules), 3);
}

} // namespace
} // namespace Quorvane::Testing
