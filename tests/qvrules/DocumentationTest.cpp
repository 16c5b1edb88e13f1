// SPDX-License-Identifier: Apache-2.0
//
// What the documentation shows is so: its rule texts compile and have nothing to find, and its
// transcripts replay. QV_APPROVE=1 records the transcripts anew, for review.
#include "apps/settings/HostSettings.h"
#include "rules/check/Checker.h"
#include "rules/language/Compiler.h"
#include "support/ReadFile.h"
#include "support/TemporaryFolder.h"
#include "Transcript.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace Quorvane::Testing {
namespace {

struct Block {
    std::size_t m_begin;
    std::string m_text;
};

// What stands between the lines "```KIND" and "```".
std::vector<Block> s_blocks(std::string const& text, std::string const& kind) {
    std::vector<Block> blocks;
    auto const head = "\n```" + kind + '\n';
    for (auto at = text.find(head); at != std::string::npos; at = text.find(head, at + 1)) {
        auto const begin = at + head.size();
        blocks.push_back({begin, text.substr(begin, text.find("\n```\n", begin) + 1 - begin)});
    }
    return blocks;
}

// One transcript after the other, in one folder: later blocks go on where earlier ones ended.
std::vector<std::string> s_replayed(std::vector<Block> const& blocks) {
    std::string all;
    std::vector<std::string> replayed;
    for (auto const& block : blocks) {
        auto const before = replay(all, QV_PROGRAMS).size();
        all += block.m_text;
        replayed.push_back(replay(all, QV_PROGRAMS).substr(before));
    }
    return replayed;
}

// The name of a page in docs/.
class DocumentationTest : public testing::TestWithParam<char const*> {
  protected:
    // The rules as they are installed, in the folder that pages call $rules.
    DocumentationTest() {
        std::filesystem::create_symlink(QV_DEFAULT_TEXT, m_rules.path("default.qvr"));
        std::filesystem::create_symlink(QV_WITH_DNS_TEXT, m_rules.path("with-dns.qvr"));
        ::setenv("rules", m_rules.path().c_str(), 1);
    }

    TemporaryFolder m_rules;
    std::string m_page = std::string(QV_DOCS "/") + GetParam() + ".md";
    std::string m_text = readFile(m_page);
};

TEST_P(DocumentationTest, RuleTextsCompileAndHaveNothingToFind) {
    for (auto const& block : s_blocks(m_text, "qvr")) {
        auto const compiled = Rules::compileRules(block.m_text);
        EXPECT_EQ(Rules::showErrors(m_page, block.m_text, compiled.m_errors), "");
        EXPECT_TRUE(Rules::checkRules(compiled.m_set, programDefaults()).empty());
    }
}

TEST_P(DocumentationTest, TranscriptsReplay) {
    auto const blocks = s_blocks(m_text, "transcript");
    EXPECT_FALSE(blocks.empty());
    auto const replayed = s_replayed(blocks);
    if (std::getenv("QV_APPROVE") == nullptr) {
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            EXPECT_EQ(replayed[i], blocks[i].m_text);
        }
        return;
    }
    for (auto i = blocks.size(); i > 0; --i) {
        m_text.replace(blocks[i - 1].m_begin, blocks[i - 1].m_text.size(), replayed[i - 1]);
    }
    std::ofstream(m_page) << m_text;
}

INSTANTIATE_TEST_SUITE_P(Pages, DocumentationTest,
                         testing::Values("seeing-rules", "testing-rules", "tuning", "with-dns",
                                         "writing-rules"));

TEST(RuleTexts, AreShownInTheDocumentation) {
    EXPECT_FALSE(s_blocks(readFile(QV_DOCS "/writing-rules.md"), "qvr").empty());
}

} // namespace
} // namespace Quorvane::Testing
