// SPDX-License-Identifier: Apache-2.0
//
// Where commands of qvrules put what they made, and what they say when they cannot. Devices are
// reached through links in a folder of the test: the machine keeps its own whatever happens.
#include "support/Program.h"
#include "support/TemporaryFolder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace Quorvane::Testing {
namespace {

namespace fs = std::filesystem;

using ::testing::HasSubstr;

class Output : public ::testing::Test {
  protected:
    ProgramResult drawTo(fs::path const& path) const {
        return runProgram(QV_RULES_PROGRAM, {"show", m_rules, "--format", "svg", "-o", path});
    }

    TemporaryFolder m_folder;
    std::string m_rules =
        m_folder.write("r.qvr", "version 1\nelite first\ndecide 0.97 code 9001 always\n");
};

TEST_F(Output, WritesIntoADeviceAndLeavesItThere) {
    auto const full = m_folder.path() / "full";
    fs::create_symlink("/dev/full", full);
    auto const result = drawTo(full);
    EXPECT_EQ(result.m_status, 73);
    EXPECT_THAT(result.m_errors, HasSubstr(full.string() + ": cannot be written"));
    EXPECT_TRUE(fs::is_character_file(full));
}

TEST_F(Output, WritesIntoAPipeAndLeavesItThere) {
    auto const pipe = m_folder.path() / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    auto const result = runProgram(
        "/bin/sh",
        {"-c", "exec 3<>\"$0\"; \"$1\" show \"$2\" -o \"$0\"; echo nothing >&3; head -c 5 <&3",
         pipe, QV_RULES_PROGRAM, m_rules});
    EXPECT_EQ(result.m_output, m_rules.substr(0, 5));
    EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST_F(Output, ReplacesWhatALinkNamesAndKeepsTheLink) {
    fs::path const file = m_folder.write("drawn.svg", "old");
    auto const link = m_folder.path() / "link";
    fs::create_symlink(file, link);
    EXPECT_EQ(drawTo(link).m_status, 0);
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_GT(fs::file_size(file), 3U);
}

TEST_F(Output, FullDisksAreNoSuccess) {
    for (auto const& command : {"check " + m_rules, std::string("attributes")}) {
        auto const result = runProgram(
            "/bin/sh", {"-c", std::string(QV_RULES_PROGRAM) + ' ' + command + " > /dev/full"});
        EXPECT_EQ(result.m_status, 73) << command;
        EXPECT_THAT(result.m_errors, HasSubstr("standard output"));
    }
}

TEST_F(Output, AReaderThatHasSeenEnoughIsNoError) {
    auto const mail = m_folder.write("one.eml", "From: a@host.example\n\n");
    for (auto const& command : {std::string("attributes"), "explain " + m_rules + ' ' + mail}) {
        std::string const script = "exec 3> >(exec true); wait $!; exec \"$0\" " + command + " >&3";
        auto const result = runProgram("/bin/bash", {"-c", script, QV_RULES_PROGRAM});
        EXPECT_EQ(result.m_errors, "") << command;
    }
}

// As a script gives it whose variable is not set; for --root it would mean the rules in force.
TEST_F(Output, EmptyNamesAreBadUsage) {
    std::vector<std::vector<std::string>> const commands{
        {"check", ""},
        {"compile", m_rules, "-o", ""},
        {"install", "absent", "--root", ""},
        {"learn", "--ham", "", "-o", "-"},
    };
    for (auto const& command : commands) {
        auto const result = runProgram(QV_RULES_PROGRAM, command);
        EXPECT_EQ(result.m_status, 64) << command[0];
        EXPECT_THAT(result.m_errors, HasSubstr("empty")) << command[0];
    }
}

// Whoever names a file or a word on the command line must not steer the terminal of who reads it.
TEST_F(Output, HostileNamesSteerNoTerminal) {
    std::string const evil = "\x1B]0;x\x07";
    auto const rules = m_folder.write("r" + evil + ".qvr", "version 0\n");
    std::vector<std::vector<std::string>> const commands{
        {evil},
        {"check", rules},
        {"check", m_rules, evil},
        {"check", "absent" + evil},
        {"explain", m_rules, "absent" + evil},
        {"explain", m_rules, "chain_broken=" + evil},
        {"show", m_rules, "--serve", evil},
        {"evaluate", m_rules, "--ham", "absent" + evil},
        {"evaluate", m_rules, "--spam-threshold", evil},
        {"install", rules, "--root", m_folder.path() / "root"},
    };
    for (auto const& command : commands) {
        auto const result = runProgram(QV_RULES_PROGRAM, command);
        EXPECT_EQ((result.m_output + result.m_errors).find('\x1B'), std::string::npos)
            << result.m_output << result.m_errors;
        EXPECT_NE((result.m_output + result.m_errors).find("\\x1B"), std::string::npos)
            << result.m_output << result.m_errors;
    }
}

} // namespace
} // namespace Quorvane::Testing
