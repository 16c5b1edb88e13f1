// SPDX-License-Identifier: Apache-2.0
#include "rules/model/Readme.h"

#include <gtest/gtest.h>
#include <limits>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

struct ReadmeCase {
    char const* m_text;
    std::optional<std::int32_t> m_version;
};

class ReadmeTest : public testing::TestWithParam<ReadmeCase> {};

TEST_P(ReadmeTest, IsReadAsHostsReadIt) {
    EXPECT_EQ(readmeVersion(GetParam().m_text), GetParam().m_version);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ReadmeTest,
    testing::Values(ReadmeCase{"", std::nullopt}, ReadmeCase{"hello\n", std::nullopt},
                    ReadmeCase{"CF_DT_VERSION=12", 12}, ReadmeCase{"CF_DT_VERSION=12\n", 12},
                    ReadmeCase{"#CF_DT_VERSION=99\nCF_DT_VERSION=12\n", 12},
                    ReadmeCase{"CF_DT_VERSION=3\nCF_DT_VERSION=5\n", 3},
                    ReadmeCase{"it is CF_DT_VERSION= +7th\n", 7}, ReadmeCase{"CF_DT_VERSION=\n", 0},
                    ReadmeCase{"CF_DT_VERSION=x\n", 0}, ReadmeCase{"CF_DT_VERSION=-1\n", -1},
                    ReadmeCase{"CF_DT_VERSION=4294967298\n", 2},
                    ReadmeCase{"CF_DT_VERSION=010\n", 10}, ReadmeCase{"CF_DT_VERSION=0x10\n", 0},
                    ReadmeCase{" #CF_DT_VERSION=7\nCF_DT_VERSION=8\n", 7},
                    ReadmeCase{"\t#CF_DT_VERSION=7\nCF_DT_VERSION=8\n", 7}));

TEST(ReadmeTextTest, HoldsTheVersionAndNothingThatLooksLikeAnotherOne) {
    for (auto const version : {0, 1, -7, std::numeric_limits<std::int32_t>::max(),
                               std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(readmeVersion(readmeText(version)), version);
    }
}

} // namespace
} // namespace Quorvane::Testing
