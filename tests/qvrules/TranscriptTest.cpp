// SPDX-License-Identifier: Apache-2.0
//
// Replays the transcripts in golden/. QV_APPROVE=1 records what the commands print now, for review.
#include "Transcript.h"
#include "support/ReadFile.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

std::vector<std::string> s_names() {
    std::vector<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(QV_GOLDEN)) {
        names.push_back(entry.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

class TranscriptTest : public testing::TestWithParam<std::string> {};

TEST_P(TranscriptTest, CommandsPrintWhatTheyPrinted) {
    auto const path = std::filesystem::path(QV_GOLDEN) / (GetParam() + ".txt");
    auto const recorded = readFile(path);
    auto const now = replay(recorded, QV_PROGRAMS);
    if (std::getenv("QV_APPROVE") != nullptr) {
        std::ofstream(path) << now;
        return;
    }
    EXPECT_EQ(now, recorded);
}

INSTANTIATE_TEST_SUITE_P(Golden, TranscriptTest, testing::ValuesIn(s_names()),
                         [](auto const& row) { return row.param; });

} // namespace
} // namespace Quorvane::Testing
