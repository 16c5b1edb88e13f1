// SPDX-License-Identifier: Apache-2.0
//
// Both shells are asked the same questions.
#include "docs/Documents.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

namespace Quorvane::Testing {

namespace {

Names s_lines(std::string const& text) {
    return captures(text, "^(.+)$");
}

std::vector<std::string> s_words(std::string const& line) {
    std::istringstream text(line);
    std::vector<std::string> words;
    std::string word;
    while (text >> word) {
        words.push_back(word);
    }
    if (line.ends_with(' ')) {
        words.emplace_back();
    }
    return words;
}

// What a shell offers when Tab is pressed after `line`.
Names s_bash(std::string const& line) {
    auto arguments = s_words(line);
    auto const script = documentPath("bash-completion/completions/" + arguments.at(0));
    arguments.insert(arguments.begin(), {"--norc", QV_COMPLETE_BASH, script});
    auto const result = runProgram("/bin/bash", arguments);
    EXPECT_EQ(result.m_status, 0) << line << "\n" << result.m_errors;
    EXPECT_EQ(result.m_errors, "") << line;
    return s_lines(result.m_output);
}

Names s_zsh(std::string const& line) {
    auto const result =
        runProgram(QV_ZSH, {"-f", QV_COMPLETE_ZSH, documentPath("zsh/site-functions"), line});
    EXPECT_EQ(result.m_status, 0) << line << "\n" << result.m_errors;
    return s_lines(result.m_output);
}

struct Shell {
    char const* m_name;
    Names (*m_complete)(std::string const& line);
};

void PrintTo(Shell const& shell, std::ostream* out) {
    *out << shell.m_name;
}

class Completion : public testing::TestWithParam<Shell> {
  protected:
    static Names complete(std::string const& line) { return GetParam().m_complete(line); }
};

} // namespace

TEST_P(Completion, OffersEveryOptionOfTheScanner) {
    EXPECT_EQ(complete("qvscan --"), optionsIn(helpOf("qvscan")));
}

TEST_P(Completion, OffersTheRuleCommandsFirst) {
    auto const commands = rulesCommands();
    EXPECT_EQ(complete("qvrules "), Names(commands.begin(), commands.end()));
}

TEST_P(Completion, OffersEveryOptionOfEachRuleCommand) {
    EXPECT_EQ(complete("qvrules --"), optionsIn(helpOf("qvrules")));
    for (auto const& command : rulesCommands()) {
        EXPECT_EQ(complete("qvrules " + command + " --"), optionsIn(helpOf("qvrules", command)))
            << command;
    }
}

TEST_P(Completion, OffersTheValuesThatAnOptionTakes) {
    EXPECT_EQ(complete("qvscan --format "), (Names{"text", "json", "csv"}));
    EXPECT_EQ(complete("qvscan --explain --walk-to-leaf "), (Names{"0", "1"}));
    EXPECT_EQ(complete("qvscan --dns "), (Names{"auto", "system", "off"}));
    EXPECT_EQ(complete("qvrules check --format "), (Names{"text", "json"}));
}

TEST_P(Completion, NarrowsWhatItOffersToWhatIsTyped) {
    EXPECT_EQ(complete("qvscan --format j"), Names{"json"});
    EXPECT_EQ(complete("qvscan --dns-d"), Names{"--dns-data"});
    EXPECT_EQ(complete("qvrules de"), Names{"decompile"});
}

TEST_P(Completion, OffersNothingForAValueThatNobodyCanGuess) {
    EXPECT_EQ(complete("qvscan --env-from "), Names{});
    EXPECT_EQ(complete("qvscan --internal "), Names{});
}

TEST_P(Completion, OffersNoOptionBehindTwoDashes) {
    EXPECT_THAT(complete("qvscan -- --f"), testing::Not(testing::Contains("--format")));
}

INSTANTIATE_TEST_SUITE_P(Shells, Completion,
                         testing::Values(Shell{"bash", s_bash}, Shell{"zsh", s_zsh}),
                         testing::PrintToStringParamName());

TEST(BashCompletion, OffersValuesBehindAnEqualsSign) {
    // Bash takes "--format=" apart.
    EXPECT_EQ(s_bash("qvscan --format ="), (Names{"text", "json", "csv"}));
    EXPECT_EQ(s_bash("qvscan --format = c"), Names{"csv"});
}

TEST(BashCompletion, LeavesPathsToReadline) {
    EXPECT_EQ(s_bash("qvscan --config "), Names{"compopt -o default"});
    EXPECT_EQ(s_bash("qvscan --root "), Names{"compopt -o dirnames"});
    EXPECT_EQ(s_bash("qvscan "), Names{"compopt -o default"});
    EXPECT_EQ(s_bash("qvrules compile -o "), Names{"compopt -o dirnames"});
    EXPECT_EQ(s_bash("qvrules evaluate "), Names{"compopt -o default"});
    EXPECT_EQ(s_bash("qvrules evaluate my.qvr --ham "), Names{"compopt -o default"});
    EXPECT_EQ(s_bash("qvrules decompile "), Names{"compopt -o dirnames"});
}

// A name is completed up to the "=" before its value. What is no name may be a file.
TEST(BashCompletion, OffersTheNamesOfAttributesInAVector) {
    EXPECT_EQ(s_bash("qvrules explain my.qvr hop_b"),
              (Names{"compopt -o default", "compopt -o nospace", "hop_behind_first="}));
    EXPECT_EQ(s_bash("qvrules explain my.qvr chain_broken = yes,hop_b"),
              (Names{"compopt -o default", "compopt -o nospace", "yes,hop_behind_first="}));
    EXPECT_EQ(s_bash("qvrules explain my.qvr mail/"), Names{"compopt -o default"});
    EXPECT_EQ(s_bash("qvrules explain "), Names{"compopt -o default"});
}

TEST(ZshCompletion, OffersTheNamesOfAttributesInAVector) {
    EXPECT_EQ(s_zsh("qvrules explain my.qvr hop_b"), Names{"hop_behind_first"});
    EXPECT_EQ(s_zsh("qvrules explain my.qvr chain_broken=yes,hop_b"), Names{"hop_behind_first"});
}

TEST(ZshCompletion, OffersValuesBehindAnEqualsSign) {
    EXPECT_EQ(s_zsh("qvscan --format=c"), Names{"csv"});
}

TEST(ZshCompletion, OffersFilesAndFolders) {
    TemporaryFolder const folder;
    folder.write("ab.txt", "");
    folder.write("abc/file", "");
    auto const start = folder.path().string() + "/a";
    EXPECT_EQ(s_zsh("qvscan --config " + start), (Names{"ab.txt", "abc"}));
    EXPECT_EQ(s_zsh("qvscan --root " + start), Names{"abc"});
    EXPECT_EQ(s_zsh("qvrules evaluate " + start), (Names{"ab.txt", "abc"}));
}

TEST(ZshCompletion, OffersWhatCanBeGivenOnceOnlyOnce) {
    auto const offers = s_zsh("qvscan --explain --internal 192.0.2.1 --");
    EXPECT_FALSE(offers.contains("--explain"));
    EXPECT_TRUE(offers.contains("--internal"));
}

} // namespace Quorvane::Testing
