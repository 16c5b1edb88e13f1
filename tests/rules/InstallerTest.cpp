// SPDX-License-Identifier: Apache-2.0
#include "rules/install/Installer.h"

#include "ErrorKind.h"
#include "rules/model/Binary.h"
#include "rules/model/Files.h"
#include "rules/model/RuleFolder.h"
#include "support/EliteHeader.h"
#include "support/TemporaryFolder.h"

#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <set>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

namespace fs = std::filesystem;
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
    std::int32_t install(RuleSet const& set) { return install(m_rules, set); }
    static std::int32_t install(fs::path const& folder, RuleSet const& set) {
        return installRules(folder, set, "mine.qvr").front().m_version;
    }
    std::int32_t rollBackTo(std::optional<std::int32_t> version) const {
        return rollBack(m_rules, version).front().m_version;
    }
    std::optional<std::int32_t> version() const { return readFolder(m_rules).version(); }
    std::set<std::string> names() const {
        std::set<std::string> found;
        for (auto const& entry : fs::directory_iterator(m_rules)) {
            found.insert(entry.path().filename());
        }
        return found;
    }

    Testing::TemporaryFolder m_folder;
    fs::path m_rules = m_folder.path() / "var" / "rules";
};

TEST_F(InstallerTest, TheFirstSetMakesTheFolderAndGetsItsOwnVersionOrOne) {
    EXPECT_EQ(install(s_set(1)), 1);
    EXPECT_EQ(s_markIn(m_rules), 1);
    Testing::TemporaryFolder const other;
    EXPECT_EQ(install(other.path(), s_set(1, 12)), 12);
}

TEST_F(InstallerTest, TheVersionGrowsByOneUnlessTheSetsOwnIsGreater) {
    install(s_set(1, 7));
    EXPECT_EQ(install(s_set(2, 3)), 8);
    EXPECT_EQ(install(s_set(3, 8)), 9);
    EXPECT_EQ(install(s_set(4, 20)), 20);
    EXPECT_EQ(version(), 20);
}

TEST_F(InstallerTest, WhatIsKeptSaysWhereItIsFromAndWhatARollbackLeadsTo) {
    install(s_set(1));
    install(s_set(2));
    auto const sets = installedSets(m_rules);
    ASSERT_EQ(sets.size(), 2U);
    EXPECT_EQ(sets[0].m_version, 2);
    EXPECT_EQ(sets[0].m_before, 1);
    EXPECT_EQ(sets[0].m_source, "mine.qvr");
    EXPECT_EQ(sets[1].m_version, 1);
    EXPECT_EQ(sets[1].m_before, std::nullopt);
    EXPECT_EQ(s_markIn(sets[1].m_folder), 1);
}

TEST_F(InstallerTest, ASourceWithLineBreaksStaysOneLine) {
    auto const sets = installRules(m_rules, s_set(1), "my\nbefore=7.qvr");
    EXPECT_EQ(sets.front().m_source, "my?before=7.qvr");
    EXPECT_EQ(sets.front().m_before, std::nullopt);
}

TEST_F(InstallerTest, AnEliteFileOfTheSetBeforeDoesNotStay) {
    install(s_set(2));
    install(s_set(3));
    EXPECT_FALSE(fs::exists(m_rules / eliteFileName));
}

TEST_F(InstallerTest, RollingBackBringsTheSetBeforeWithAVersionThatHostsTakeUp) {
    install(s_set(1, 5));
    install(s_set(2));
    EXPECT_EQ(rollBackTo({}), 7);
    EXPECT_EQ(s_markIn(m_rules), 1);
    EXPECT_EQ(version(), 7);
    EXPECT_EQ(installedSets(m_rules).front().m_restored, 5);
}

TEST_F(InstallerTest, EachRollbackLeadsOneStepFurtherBack) {
    install(s_set(1));
    install(s_set(2));
    install(s_set(3));
    EXPECT_EQ(rollBackTo({}), 4);
    EXPECT_EQ(s_markIn(m_rules), 2);
    EXPECT_EQ(rollBackTo({}), 5);
    EXPECT_EQ(s_markIn(m_rules), 1);
    EXPECT_EQ(kindOf([&] { rollBack(m_rules); }), RuleError::Kind::noInput);
}

TEST_F(InstallerTest, AVersionThatIsKeptCanBeBroughtBackAndThatCanBeUndone) {
    install(s_set(1));
    install(s_set(2));
    install(s_set(3));
    rollBackTo(1);
    EXPECT_EQ(s_markIn(m_rules), 1);
    rollBackTo({});
    EXPECT_EQ(s_markIn(m_rules), 3);
    EXPECT_EQ(kindOf([&] { rollBack(m_rules, 99); }), RuleError::Kind::noInput);
}

TEST_F(InstallerTest, NothingButTheLinksAndTheSetsIsLeftInTheFolder) {
    install(s_set(2));
    install(s_set(4));
    EXPECT_EQ(names(),
              (std::set<std::string>{"README", "current", "qv.dt", "qv.names", "qv2.dt", "sets"}));
}

TEST_F(InstallerTest, TheOldestSetsGo) {
    for (std::int32_t mark = 1; mark <= static_cast<std::int32_t>(keptSets) + 3; ++mark) {
        install(s_set(mark));
    }
    auto const sets = installedSets(m_rules);
    ASSERT_EQ(sets.size(), keptSets);
    EXPECT_EQ(sets.front().m_version, keptSets + 3);
    EXPECT_EQ(sets.back().m_version, 4);
}

TEST_F(InstallerTest, FilesInTheFolderBecomeASetToGoBackTo) {
    writeFolder(m_rules, s_set(2, 6));
    EXPECT_EQ(installedSets(m_rules).front().m_version, 6);
    EXPECT_EQ(install(s_set(3)), 7);
    EXPECT_EQ(s_markIn(m_rules), 3);
    rollBack(m_rules);
    EXPECT_EQ(s_markIn(m_rules), 2);
}

TEST_F(InstallerTest, AFileThatReplacedALinkCountsAndIsKept) {
    install(s_set(1));
    Testing::TemporaryFolder const other;
    writeFolder(other.path(), s_set(3, 9));
    for (auto const* name : {treeFileName, versionFileName}) {
        fs::rename(other.path() / name, m_rules / name);
    }
    EXPECT_EQ(installedSets(m_rules).front().m_version, 9);
    EXPECT_EQ(install(s_set(4)), 10);
    rollBack(m_rules);
    EXPECT_EQ(s_markIn(m_rules), 3);
}

TEST_F(InstallerTest, AFolderWithoutAVersionIsTakenOver) {
    writeFolder(m_rules, s_set(1));
    EXPECT_EQ(install(s_set(2)), 1);
    rollBack(m_rules);
    EXPECT_EQ(s_markIn(m_rules), 1);
    EXPECT_EQ(version(), 2);
}

TEST_F(InstallerTest, WithoutAPreviousSetThereIsNothingToRollBackTo) {
    EXPECT_EQ(kindOf([&] { rollBack(m_rules); }), RuleError::Kind::noInput);
    install(s_set(1));
    EXPECT_EQ(kindOf([&] { rollBack(m_rules); }), RuleError::Kind::noInput);
    EXPECT_EQ(s_markIn(m_rules), 1);
}

TEST_F(InstallerTest, TheGreatestVersionCannotBeFollowed) {
    install(s_set(1, std::numeric_limits<std::int32_t>::max()));
    EXPECT_EQ(kindOf([&] { install(s_set(2)); }), RuleError::Kind::badRules);
    EXPECT_EQ(s_markIn(m_rules), 1);
}

TEST_F(InstallerTest, AfterAFailureTheOldSetIsInForce) {
    install(s_set(1, 5));
    fs::rename(m_rules / "sets", m_rules / "elsewhere");
    std::ofstream(m_rules / "sets") << "in the way";
    EXPECT_ANY_THROW(install(s_set(2)));
    fs::remove(m_rules / "sets");
    fs::rename(m_rules / "elsewhere", m_rules / "sets");
    EXPECT_EQ(s_markIn(m_rules), 1);
    EXPECT_EQ(version(), 5);
}

TEST_F(InstallerTest, InstallationsAtTheSameTimeWaitForOneAnother) {
    install(s_set(2));
    std::vector<std::thread> threads;
    for (std::int32_t mark = 3; mark < 7; ++mark) {
        threads.emplace_back([this, mark] {
            for (int i = 0; i < 5; ++i) {
                install(s_set(mark));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(version(), 21);
    EXPECT_NE(s_markIn(m_rules), 0);
}

// A process that installs sets for ever.
pid_t s_beginInstalling(fs::path const& folder) {
    auto const child = ::fork();
    if (child != 0) {
        return child;
    }
    for (std::int32_t mark = 1;; ++mark) {
        installRules(folder, s_set(mark), "");
    }
}

TEST_F(InstallerTest, AnInstallationThatIsKilledLeavesAWholeSetAtEveryMoment) {
    install(s_set(1));
    std::minstd_rand random;
    for (int i = 0; i < 200; ++i) {
        auto const child = s_beginInstalling(m_rules);
        ::usleep(static_cast<useconds_t>(random() % 5000));
        ::kill(child, SIGKILL);
        ASSERT_EQ(::waitpid(child, nullptr, 0), child);
        ASSERT_NE(s_markIn(m_rules), 0) << "after " << i << " kills";
        ASSERT_GE(version().value_or(0), 1);
    }
    install(s_set(8));
    EXPECT_EQ(s_markIn(m_rules), 8);
    EXPECT_EQ(names(),
              (std::set<std::string>{"README", "current", "qv.dt", "qv.names", "qv2.dt", "sets"}));
    for (auto const& entry : fs::directory_iterator(m_rules / "sets")) {
        EXPECT_NE(s_markIn(entry.path()), 0) << entry.path();
    }
}

// A disk is full after so many bytes of a file. Status 0: the set was installed, 1: it was refused.
int s_installWithin(rlim_t bytes, fs::path const& folder, RuleSet const& set) {
    auto const child = ::fork();
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit const limit{bytes, bytes};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        try {
            installRules(folder, set, "");
        } catch (...) {
            ::_exit(1);
        }
        ::_exit(0);
    }
    int status = -1;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(InstallerTest, AFullDiskLeavesTheSetInForce) {
    install(s_set(1, 5));
    int refused = 0;
    rlim_t bytes = 0;
    for (; s_installWithin(bytes, m_rules, s_set(2)) == 1; bytes += bytes / 8 + 1) {
        ASSERT_EQ(s_markIn(m_rules), 1) << "with files of " << bytes << " bytes";
        ASSERT_EQ(version(), 5);
        ++refused;
    }
    EXPECT_GT(refused, 10);
    EXPECT_EQ(s_markIn(m_rules), 2);
    EXPECT_EQ(version(), 6);
}

TEST_F(InstallerTest, WhatAKilledInstallationLeftIsRemovedByTheNext) {
    install(s_set(1));
    fs::create_directories(m_rules / "sets" / ".new" / "deep");
    fs::create_directories(m_rules / "sets" / ".old");
    std::ofstream(m_rules / "sets" / ".new" / eliteFileName) << "old";
    std::ofstream(m_rules / ".qv.dt.a1B2c3") << "old";
    fs::create_symlink("sets/7", m_rules / ".current.new");
    std::ofstream(m_rules / ".mine.a1B2c3") << "not ours";
    install(s_set(3));
    EXPECT_EQ(names(), (std::set<std::string>{".mine.a1B2c3", "README", "current", "qv.dt",
                                              "qv.names", "qv2.dt", "sets"}));
    EXPECT_EQ(s_markIn(m_rules), 3);
    EXPECT_FALSE(fs::exists(m_rules / "sets" / ".new"));
    EXPECT_FALSE(fs::exists(m_rules / "sets" / ".old"));
}

} // namespace
} // namespace Quorvane::Testing
