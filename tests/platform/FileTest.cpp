// SPDX-License-Identifier: Apache-2.0
#include "platform/File.h"

#include "include2/Exception.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

class FileTest : public testing::Test {
  protected:
    FileTest() {
        auto pattern = (std::filesystem::temp_directory_path() / "qv-file-XXXXXX").string();
        m_folder = ::mkdtemp(pattern.data());
        std::ofstream(m_folder / "text") << "line\n";
    }
    ~FileTest() override {
        File::setRoot("/");
        std::filesystem::remove_all(m_folder);
    }

    std::filesystem::path m_folder;
};

std::string s_text(File::Path const& path) {
    return static_cast<char const*>(path);
}

TEST_F(FileTest, JoinsFolderAndNameWithOneSlash) {
    EXPECT_EQ(s_text(File::Path("/a/b", "c")), "/a/b/c");
    EXPECT_EQ(s_text(File::Path("/a/b/", "c")), "/a/b/c");
    EXPECT_EQ(s_text(File::Path("", "c")), "c");
    EXPECT_EQ(s_text(File::Path("a", "c")), "a/c");
}

TEST_F(FileTest, LooksAbsolutePathsUpBelowTheRoot) {
    EXPECT_EQ(File::root(), "");
    File::setRoot("/tmp//");
    EXPECT_EQ(File::root(), "/tmp");
    EXPECT_EQ(s_text(File::Path("/a", "b")), "/tmp/a/b");
    EXPECT_EQ(s_text(File::Path("a", "b")), "a/b");
    File::setRoot("/");
    EXPECT_EQ(s_text(File::Path("/a", "b")), "/a/b");
}

TEST_F(FileTest, ARootThatIsNoFolderIsRefusedAndNothingChanges) {
    EXPECT_THROW(File::setRoot((m_folder / "missing").string()), Exception);
    EXPECT_THROW(File::setRoot((m_folder / "text").string()), Exception);
    EXPECT_EQ(File::root(), "");
}

TEST_F(FileTest, TellsWhetherAFileExists) {
    EXPECT_TRUE(File::Path(m_folder.string(), "text").exists());
    EXPECT_TRUE(File::Path(m_folder.string(), "").exists());
    EXPECT_FALSE(File::Path(m_folder.string(), "missing").exists());
}

TEST_F(FileTest, StreamsReadLikeTheStandardOnes) {
    File::basic_ifstream<char> file(File::Path(m_folder.string(), "text"));
    ASSERT_TRUE(file.is_open());
    std::string line;
    EXPECT_TRUE(std::getline(file, line));
    EXPECT_EQ(line, "line");
    EXPECT_FALSE(std::getline(file, line));
    EXPECT_FALSE(File::basic_ifstream<char>(File::Path(m_folder.string(), "missing")).is_open());
}

} // namespace
} // namespace Quorvane::Testing
