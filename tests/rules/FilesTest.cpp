// SPDX-License-Identifier: Apache-2.0
#include "rules/model/Files.h"

#include "ErrorKind.h"
#include "rules/model/RuleFolder.h"
#include "rules/model/RuleNames.h"
#include "support/EliteHeader.h"
#include "support/TemporaryFolder.h"

#include <atomic>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

namespace fs = std::filesystem;

std::size_t s_fileCount(fs::path const& folder) {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(FilesTest, AReaderFindsTheOldFileOrTheWholeNewOne) {
    Testing::TemporaryFolder const folder;
    auto const path = folder.path() / "file";
    std::string const one(300000, 'a');
    std::string const other(200000, 'b');
    replaceFile(path, one);
    std::atomic<bool> isDone = false;
    std::thread writer([&] {
        for (int i = 0; i < 60; ++i) {
            replaceFile(path, i % 2 == 0 ? other : one);
        }
        isDone = true;
    });
    int torn = 0;
    while (!isDone) {
        auto const content = Rules::readFile(path);
        torn += content == one || content == other ? 0 : 1;
    }
    writer.join();
    EXPECT_EQ(torn, 0);
}

TEST(FilesTest, AReplacedFileIsReadableByEveryoneAndLeavesNothingBeside) {
    Testing::TemporaryFolder const folder;
    replaceFile(folder.path() / "file", "x");
    struct stat facts {};
    ASSERT_EQ(::stat((folder.path() / "file").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0644U);
    EXPECT_EQ(s_fileCount(folder.path()), 1U);
}

TEST(FilesTest, AFailedReplacementLeavesTheOldFileAndNothingBeside) {
    Testing::TemporaryFolder const folder;
    fs::create_directory(folder.path() / "file"); // a folder cannot be renamed over
    replaceFile(folder.path() / "file" / "inside", "kept");
    EXPECT_EQ(kindOf([&] { replaceFile(folder.path() / "file", "x"); }),
              RuleError::Kind::cannotWrite);
    EXPECT_EQ(Rules::readFile(folder.path() / "file" / "inside"), "kept");
    EXPECT_EQ(s_fileCount(folder.path()), 1U);
}

TEST(FilesTest, WhatCannotBeOpenedIsSaidByName) {
    Testing::TemporaryFolder const folder;
    auto const path = folder.path() / "none";
    EXPECT_EQ(readFileIfThere(path), std::nullopt);
    EXPECT_EQ(kindOf([&] { Rules::readFile(path); }), RuleError::Kind::noInput);
    EXPECT_EQ(kindOf([&] { Rules::readFile(folder.path()); }), RuleError::Kind::noInput);
    EXPECT_EQ(kindOf([&] {
                  makeFolder(path / "a");
                  makeFolder("/dev/null/a");
              }),
              RuleError::Kind::cannotWrite);
}

TEST(FilesTest, AFileThatNoRuleSetCanFillIsNotReadToItsEnd) {
    Testing::TemporaryFolder const folder;
    auto const path = folder.path() / "large";
    replaceFile(path, "");
    fs::resize_file(path, maxRuleFileSize + 1); // sparse
    EXPECT_EQ(kindOf([&] { Rules::readFile(path); }), RuleError::Kind::badData);
}

TEST(RuleFolderTest, AFolderIsWrittenAsItWasRead) {
    Testing::TemporaryFolder const folder;
    RuleSet set;
    set.setVersion(4);
    set.m_nodes.resize(3, DTNode{});
    set.m_treeTail = "tail";
    set.m_elite = EliteFile{plainEliteHeader(), {}, "x"};
    set.m_names.m_content = "names\n";
    writeFolder(folder.path() / "a" / "b", set);
    auto const read = readFolder(folder.path() / "a" / "b");
    EXPECT_EQ(read.version(), 4);
    EXPECT_EQ(read.m_nodes.size(), 3U);
    EXPECT_EQ(read.m_treeTail, "tail");
    EXPECT_EQ(read.m_elite->m_tail, "x");
    EXPECT_EQ(read.m_names.m_content, "names\n");
    EXPECT_EQ(s_fileCount(folder.path() / "a" / "b"), ruleFileNames.size());
}

TEST(RuleFolderTest, GivesEachFileOfASetByItsName) {
    RuleSet set;
    EXPECT_EQ(ruleFile(set, treeFileName), "");
    for (auto const* const name : {eliteFileName, versionFileName, namesFileName}) {
        EXPECT_EQ(ruleFile(set, name), std::nullopt) << name;
    }
    set.setVersion(4);
    set.m_elite = EliteFile{{}, {}, "x"};
    set.m_names.m_content = "names\n";
    EXPECT_EQ(ruleFile(set, eliteFileName), "x");
    EXPECT_EQ(ruleFile(set, versionFileName), set.m_readme);
    EXPECT_EQ(ruleFile(set, namesFileName), "names\n");
    EXPECT_EQ(std::string(ruleFileNames.back()), versionFileName) << "loads begin when it changes";
}

// Neither a pipe, which nobody writes into, nor anything else keeps the rules from being read.
TEST(RuleFolderTest, WhateverStandsInPlaceOfTheNamesTheRulesAreRead) {
    Testing::TemporaryFolder const folder;
    writeFolder(folder.path(), RuleSet());
    auto const path = folder.path() / namesFileName;
    auto const problem = [&folder] {
        auto const set = readFolder(folder.path());
        EXPECT_EQ(set.m_names.m_content, std::nullopt);
        return set.m_names.m_problem;
    };
    EXPECT_EQ(problem(), "");
    ASSERT_EQ(::mkfifo(path.c_str(), 0644), 0);
    EXPECT_EQ(problem(), "is no regular file");
    fs::remove(path);
    fs::create_directory(path);
    EXPECT_EQ(problem(), "is no regular file");
    fs::remove(path);
    fs::create_symlink(namesFileName, path);
    EXPECT_EQ(problem(), "cannot be opened: Too many levels of symbolic links");
    fs::remove(path);
    replaceFile(path, "");
    fs::resize_file(path, maxNamesFileSize); // sparse
    EXPECT_EQ(readFolder(folder.path()).m_names.m_content->size(), maxNamesFileSize);
    fs::resize_file(path, maxNamesFileSize + 1);
    EXPECT_EQ(problem(), "has more than 8388608 bytes");
}

TEST(RuleFolderTest, FilesThatTheSetDoesNotHaveAreRemoved) {
    Testing::TemporaryFolder const folder;
    for (auto const* const name : ruleFileNames) {
        replaceFile(folder.path() / name, "stale");
    }
    writeFolder(folder.path(), RuleSet());
    EXPECT_EQ(s_fileCount(folder.path()), 1U);
    EXPECT_EQ(Rules::readFile(folder.path() / treeFileName), "");
}

TEST(RuleFolderTest, AFolderWithoutATreeIsNone) {
    Testing::TemporaryFolder const folder;
    EXPECT_EQ(kindOf([&] { readFolder(folder.path()); }), RuleError::Kind::noInput);
}

} // namespace
} // namespace Quorvane::Testing
