// SPDX-License-Identifier: Apache-2.0
#include "rules/model/Files.h"

#include "ErrorKind.h"
#include "rules/model/RuleFolder.h"
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
    writeFolder(folder.path() / "a" / "b", set);
    auto const read = readFolder(folder.path() / "a" / "b");
    EXPECT_EQ(read.version(), 4);
    EXPECT_EQ(read.m_nodes.size(), 3U);
    EXPECT_EQ(read.m_treeTail, "tail");
    EXPECT_EQ(read.m_elite->m_tail, "x");
}

TEST(RuleFolderTest, FilesThatTheSetDoesNotHaveAreRemoved) {
    Testing::TemporaryFolder const folder;
    for (auto const name : {eliteFileName, versionFileName}) {
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
