// SPDX-License-Identifier: Apache-2.0
//
// Each case is judged as if it were the only one.
#include "apps/workshop/CaseRunner.h"

#include "rules/model/RuleError.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

using ::testing::HasSubstr;
using Workshop::CaseResult;

constexpr char rules[] = "version 1\n"
                         "tree {\n"
                         "    first_helo_resolves == yes: confidence 0.1 support 20\n"
                         "    first_reverse_dynamic == yes: confidence 0.96 support 20\n"
                         "    first_reverse_dynamic == no: confidence 0.4 support 20\n"
                         "}\n";

constexpr char message[] = "message = '''\n"
                           "Received: from mail.example.org (odd-one.example.org [192.0.2.10])\n"
                           "\tby mx.example.net; Wed, 15 May 2024 04:10:11 +0200\n"
                           "'''\n";

class CaseRunnerTest : public testing::Test {
  protected:
    // Runs cases of `keys` each, all on the same message.
    std::vector<CaseResult> run(std::vector<std::string> const& keys) {
        std::string text;
        for (std::size_t i = 0; i < keys.size(); ++i) {
            text += "[[case]]\nname = \"" + std::to_string(i) + "\"\nverdict = \"none\"\n" +
                    message + keys[i];
        }
        auto const file = Workshop::readCaseFile(m_folder.write("cases.toml", text));
        std::vector<CaseResult> results;
        for (auto const& one : file.m_cases) {
            results.push_back(m_runner.run(one, file.m_path, m_rules));
        }
        return results;
    }

    void SetUp() override { m_runner.load(m_rules); }

    TemporaryFolder m_folder;
    std::string m_rules = m_folder.write("r.qvr", rules);
    Workshop::CaseRunner m_runner;
};

TEST_F(CaseRunnerTest, NamePatternsOfOneCaseDoNotReachTheNext) {
    m_folder.write("odd.txt", "^odd-\n");
    auto const results =
        run({"", "dynamic-patterns = \"odd.txt\"\n", "dynamic-patterns = \"odd.txt\"\n", ""});
    EXPECT_EQ(results[0].m_node, 5);
    EXPECT_EQ(results[1].m_node, 4);
    EXPECT_EQ(results[2].m_node, 4);
    EXPECT_EQ(results[3].m_node, 5);
}

TEST_F(CaseRunnerTest, LookUpsAreAnsweredFromTheCaseAlone) {
    auto const results = run({"dns = [\"mail.example.org. A 192.0.2.10\"]\n", "",
                              "dns = [\"other.example.org. A 192.0.2.10\"]\n"});
    EXPECT_EQ(results[0].m_node, 3);
    EXPECT_EQ(results[1].m_node, 5);
    EXPECT_EQ(results[2].m_node, 5);
}

TEST_F(CaseRunnerTest, TrustedRelaysOfOneCaseDoNotReachTheNext) {
    auto const results = run({"trusted-mta = [\"192.0.2.0/24\"]\n", ""});
    EXPECT_EQ(results[0].m_node, 0);
    EXPECT_EQ(results[0].m_because, "no public address");
    EXPECT_EQ(results[1].m_node, 5);
}

TEST_F(CaseRunnerTest, OnlyWhatTheCaseSaysIsCompared) {
    auto const results = run({"", "node = 5\nreasons = \"\"\nconfidence = 0.4\n",
                              "confidence = [0.3, 0.4]\n", "confidence = [0.41, 0.5]\n",
                              "confidence = 0.4001\n", "node = 4\n", "reasons = \"a\"\n"});
    std::vector<std::size_t> differences;
    for (auto const& result : results) {
        differences.push_back(result.m_differences.size());
    }
    EXPECT_THAT(differences, testing::ElementsAre(0, 0, 0, 1, 1, 1, 1));
    EXPECT_EQ(results[3].m_differences[0].m_expected, "0.41 to 0.5");
    EXPECT_EQ(results[3].m_differences[0].m_came, "0.4");
}

TEST_F(CaseRunnerTest, SettingsThatCannotBePutInForceNameTheCase) {
    for (auto const* const keys : {"dns = [\"nonsense\"]\n", "dynamic-patterns = \"no.txt\"\n",
                                   "dns-data = \"no.zone\"\n"}) {
        try {
            run({"", keys});
            FAIL() << keys;
        } catch (Rules::RuleError const& error) {
            EXPECT_EQ(error.kind(), Rules::RuleError::Kind::badData);
            EXPECT_THAT(error.what(), HasSubstr("cases.toml:8: ")) << keys;
        }
    }
}

TEST_F(CaseRunnerTest, RulesThatCannotBeLoadedAreRefused) {
    m_folder.write("bad/qv.dt", std::string(46000, '\x7F'));
    EXPECT_THROW(m_runner.load(m_folder.path() / "bad"), Rules::RuleError);
}

} // namespace
} // namespace Quorvane::Testing
