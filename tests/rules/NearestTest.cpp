// SPDX-License-Identifier: Apache-2.0
#include "rules/language/Nearest.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

struct NearestCase {
    char const* m_origin;
    std::string m_word;
    char const* m_nearest;
};

class NearestTest : public testing::TestWithParam<NearestCase> {};

TEST_P(NearestTest, SuggestsWhatWasProbablyMeant) {
    EXPECT_EQ(nearestWord(GetParam().m_word, {"confidence", "support", "leaf", "no"}),
              GetParam().m_nearest)
        << GetParam().m_origin;
}

INSTANTIATE_TEST_SUITE_P(
    Words, NearestTest,
    testing::Values(NearestCase{"a letter wrong", "confidance", "confidence"},
                    NearestCase{"a letter missing", "suport", "support"},
                    NearestCase{"a letter too many", "leaff", "leaf"},
                    NearestCase{"neighbours swapped", "laef", "leaf"},
                    NearestCase{"something else", "umbrella", ""},
                    NearestCase{"a short word is no slip for anything", "xy", ""},
                    NearestCase{"nothing at all", "", ""},
                    NearestCase{"no word that long is a slip", std::string(5000, 'a'), ""}));

TEST(NearestTest, SwappedNeighboursAreOneSlip) {
    EXPECT_EQ(nearestWord("form", {"farms", "from"}), "from");
}

TEST(NearestTest, OffersAWordOnlyWhenThereIsOne) {
    EXPECT_EQ(didYouMean("laef", {"leaf"}), "; did you mean \"leaf\"?");
    EXPECT_EQ(didYouMean("umbrella", {"leaf"}), "");
}

} // namespace
} // namespace Quorvane::Testing
