// SPDX-License-Identifier: Apache-2.0
#include "scanner/RuleVersion.h"

#include "support/RuleFolder.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

struct VersionCase {
    char const* m_why;
    char const* m_readme;
    std::int32_t m_version;
};

VersionCase const versionCases[] = {
    {"a plain line", "CF_DT_VERSION=12\n", 12},
    {"without line end", "CF_DT_VERSION=12", 12},
    {"a comment is skipped", "#CF_DT_VERSION=99\nCF_DT_VERSION=12\n", 12},
    {"the first line wins", "CF_DT_VERSION=3\nCF_DT_VERSION=5\n", 3},
    {"the key may stand anywhere in its line", "xCF_DT_VERSION=7\n", 7},
    {"even after text with a number sign", "x # CF_DT_VERSION=7\n", 7},
    {"blanks in front of a number sign make no comment", " #CF_DT_VERSION=7\nCF_DT_VERSION=8\n", 7},
    {"nor does a tab", "\t#CF_DT_VERSION=7\nCF_DT_VERSION=8\n", 7},
    {"what follows the number is ignored", "CF_DT_VERSION=7abc\n", 7},
    {"nothing after the key", "CF_DT_VERSION=\n", 0},
    {"letters after the key", "CF_DT_VERSION=abc\n", 0},
    {"blanks and a sign", "CF_DT_VERSION= \t+8\n", 8},
    {"a leading zero makes no octal number", "CF_DT_VERSION=010\n", 10},
    {"an x after it no hexadecimal one", "CF_DT_VERSION=0x10\n", 0},
    {"a negative number", "CF_DT_VERSION=-5\n", -5},
    {"a first line that is no number still wins", "CF_DT_VERSION=x\nCF_DT_VERSION=5\n", 0},
    {"lines of 4 characters are skipped", "CF_D\nCF_DT_VERSION=5\n", 5},
    {"empty lines are skipped", "\n\nCF_DT_VERSION=5\n", 5},
    {"another letter case is another key", "cf_dt_version=5\n", -1},
    {"no version line", "hello world\n", -1},
    {"an empty file", "", -1},
    {"low 32 bits count", "CF_DT_VERSION=4294967298\n", 2},
    {"low 32 bits may be negative", "CF_DT_VERSION=4294967295\n", -1},
    {"line ends of other systems", "CF_DT_VERSION=9\r\n", 9},
};

TEST(RuleVersionTest, IsTheNumberOfTheFirstVersionLine) {
    RuleFolder const rules;
    for (auto const& row : versionCases) {
        rules.writeReadme(row.m_readme);
        EXPECT_EQ(readRuleVersion(), row.m_version) << row.m_why;
    }
}

TEST(RuleVersionTest, IsUnknownWithoutFileAndForAFolder) {
    RuleFolder const rules;
    EXPECT_EQ(readRuleVersion(), noRuleVersion);
    std::filesystem::create_directory(rules.path(versionFileName));
    EXPECT_EQ(readRuleVersion(), noRuleVersion);
}

} // namespace
} // namespace Quorvane::Testing
