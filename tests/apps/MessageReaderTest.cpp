// SPDX-License-Identifier: Apache-2.0
#include "apps/input/MessageReader.h"
#include "apps/input/HeaderCheck.h"
#include "support/MemorySource.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace Quorvane::Testing {

namespace {

// "number:text" of each section.
std::vector<std::string> s_sections(std::string const& text, std::size_t piece) {
    MessageReader reader(std::make_unique<MemorySource>(text, piece), {});
    std::vector<std::string> sections;
    for (HeaderSection section; reader.next(section);) {
        sections.push_back(std::to_string(section.m_number) + ":" + section.m_text);
    }
    return sections;
}

struct ReaderCase {
    char const* m_why;
    std::string m_text;
    std::vector<std::string> m_sections;
};

ReaderCase const readerCases[] = {
    {"a message", "A: b\nC: d\n\nbody\n", {"0:A: b\nC: d\n\n"}},
    {"CR LF", "A: b\r\n\r\nbody\r\n", {"0:A: b\r\n\r\n"}},
    {"no body", "A: b", {"0:A: b"}},
    {"nothing", "", {"0:"}},
    {"an mbox", "From x\nA: b\n\nbody\n\nFrom y\nC: d\n\n", {"1:A: b\n\n", "2:C: d\n\n"}},
    {"headers only", "From x\nA: b\n\nFrom y\nC: d\n", {"1:A: b\n\n", "2:C: d\n"}},
    {"From without an empty line before it",
     "From x\nA: b\n\nbody\nFrom y\n\nFrom z\nC: d\n\n",
     {"1:A: b\n\n", "2:C: d\n\n"}},
    {"From inside a header section",
     "From x\nA: b\nFrom y\nC: d\n\n",
     {"1:A: b\nFrom y\nC: d\n\n"}},
    {"CR LF mbox",
     "From x\r\nA: b\r\n\r\nb\r\n\r\nFrom y\r\nC: d\r\n\r\n",
     {"1:A: b\r\n\r\n", "2:C: d\r\n\r\n"}},
    {"quoted in a body", "From x\nA: b\n\n>From y\n\n", {"1:A: b\n\n"}},
    {"quoted in a header section",
     "From x\n>From a\n>>From b\n> From c\nD: >From e\n\n",
     {"1:From a\n>From b\n> From c\nD: >From e\n\n"}},
    {"as many quotes as are looked for",
     "From x\n" + std::string(75, '>') + "From a\n\n",
     {"1:" + std::string(74, '>') + "From a\n\n"}},
    {"more quotes than are looked for",
     "From x\n" + std::string(76, '>') + "From a\n\n",
     {"1:" + std::string(76, '>') + "From a\n\n"}},
    {"quotes of a single message stay", ">From a\nB: c\n\n", {"0:>From a\nB: c\n\n"}},
    {"a record without headers", "From x\n\nFrom y\nA: b\n\n", {"1:\n", "2:A: b\n\n"}},
    {"a separator at the end", "From x\nA: b\n\nFrom y", {"1:A: b\n\n", "2:"}},
    {"From without a blank", "From x\nA: b\n\nFromage\n\n", {"1:A: b\n\n"}},
    {"a long line",
     "From x\nA: " + std::string(200000, 'b') + "\n\nFrom y\nC: d\n\n",
     {"1:A: " + std::string(200000, 'b') + "\n\n", "2:C: d\n\n"}},
    {"a long separator", "From " + std::string(200000, 'x') + "\nA: b\n\n", {"1:A: b\n\n"}},
};

TEST(MessageReader, SplitsInputsWhateverThePieces) {
    for (auto const& row : readerCases) {
        for (std::size_t const piece : {std::size_t{1}, std::size_t{2}, std::size_t{3},
                                        std::size_t{7}, std::size_t{80}, std::size_t{1} << 20}) {
            EXPECT_EQ(s_sections(row.m_text, piece), row.m_sections)
                << row.m_why << ", in pieces of " << piece;
        }
    }
}

TEST(MessageReader, ALineBreakAtTheEndOfTheBufferIsSeen) {
    for (std::size_t length = 65500; length < 65600; ++length) {
        auto const text = "From x\nA: " + std::string(length, 'b') + "\r\n\r\nFrom y\nC: d\n\n";
        EXPECT_EQ(s_sections(text, 1 << 20).size(), 2U) << length;
    }
}

TEST(MessageReader, AHeaderSectionBeyondTheLimitIsReportedAndTheNextRecordRead) {
    HeaderLimits const limits;
    std::string const most(limits.m_maxBytes - 5, 'b'); // with "A: " and two line breaks
    for (bool const isBeyond : {false, true}) {
        auto const text = "From x\nA: " + most + (isBeyond ? "b" : "") + "\n\nFrom y\nC: d\n\n";
        MessageReader reader(std::make_unique<MemorySource>(text, 1 << 20), {});
        HeaderSection section;
        ASSERT_TRUE(reader.next(section));
        EXPECT_EQ(section.m_text.size(), isBeyond ? 0 : limits.m_maxBytes);
        EXPECT_EQ(section.m_problem, isBeyond ? tooLong(limits) : "");
        ASSERT_TRUE(reader.next(section));
        EXPECT_EQ(section.m_problem, "");
        EXPECT_EQ(section.m_text, "C: d\n\n");
    }
}

TEST(MessageReader, ASingleMessageIsNotReadBeyondItsHeaders) {
    auto source = std::make_unique<MemorySource>("A: b\n\n" + std::string(1 << 20, 'x'), 4096);
    auto const& looked = *source;
    MessageReader reader(std::move(source), {});
    HeaderSection section;
    ASSERT_TRUE(reader.next(section));
    EXPECT_LE(looked.position(), 4096U);
    EXPECT_FALSE(reader.next(section));
}

// What stands after a record that cannot be read on does not take the record with it.
TEST(MessageReader, ARecordOfAnMboxIsNotReadBeyondItsHeadersEither) {
    auto const text = "From x\nA: b\n\n" + std::string(1000, 'x') + "\n\nFrom x\nC: d\n\n";
    MessageReader reader(std::make_unique<MemorySource>(text, 14), {});
    HeaderSection section;
    EXPECT_TRUE(reader.next(section));
    EXPECT_EQ(section.m_text, "A: b\n\n");
    EXPECT_LT(reader.position(), 200U);
    EXPECT_TRUE(reader.next(section));
    EXPECT_EQ(section.m_text, "C: d\n\n");
    EXPECT_FALSE(reader.next(section));
}

TEST(MessageReader, ADrainedMessageIsReadToItsEnd) {
    auto source = std::make_unique<MemorySource>("A: b\n\n" + std::string(1 << 20, 'x'), 4096);
    auto const& looked = *source;
    MessageReader reader(std::move(source), {true, {}});
    HeaderSection section;
    ASSERT_TRUE(reader.next(section));
    EXPECT_EQ(looked.position(), 6U + (1U << 20));
}

} // namespace

} // namespace Quorvane::Testing
