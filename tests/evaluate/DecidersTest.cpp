// SPDX-License-Identifier: Apache-2.0
#include "rules/evaluate/Deciders.h"

#include "JudgedVectors.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

TEST(Deciders, AddUpWhatTheyReachedAndWhereTheyErred) {
    Deciders deciders;
    deciders.add(judgedBy({false, 7}, Verdict::spam), {10, 2}, {"a"});
    deciders.add(judgedBy({false, 7}, Verdict::spam), {5, 1}, {"b"});
    deciders.add(judgedBy({false, 8}, Verdict::ham), {3, 30}, {"c"});
    deciders.add(judgedBy({false, 9}, Verdict::none), {40, 40}, {});
    auto const byUse = deciders.byUse();
    ASSERT_EQ(byUse.size(), 3U);
    EXPECT_EQ(byUse[0].m_decider.m_number, 9);
    EXPECT_EQ(byUse[0].m_wrong, LabelCounts{}); // no verdict is not a wrong one
    EXPECT_EQ(byUse[1].m_wrong, (LabelCounts{3, 0}));
    EXPECT_EQ(byUse[2].m_reached, (LabelCounts{15, 3}));
    EXPECT_EQ(byUse[2].m_wrong, (LabelCounts{0, 3}));
    EXPECT_EQ(byUse[2].m_samples, (std::vector<std::string>{"a", "b"}));
}

TEST(Deciders, ListOnlyThoseThatErrByErrors) {
    Deciders deciders;
    deciders.add(judgedBy({false, 7}, Verdict::spam), {100, 0}, {});
    deciders.add(judgedBy({true, 7}, Verdict::spam), {1, 2}, {});
    deciders.add(judgedBy({false, 8}, Verdict::ham), {3, 1}, {});
    auto const byErrors = deciders.byErrors();
    ASSERT_EQ(byErrors.size(), 2U);
    EXPECT_EQ(byErrors[0].m_decider, (Decider{false, 8}));
    EXPECT_EQ(byErrors[1].m_decider, (Decider{true, 7})); // apart from the node of that number
}

TEST(Deciders, KeepFewSamples) {
    Deciders deciders;
    deciders.add(judgedBy({false, 7}, Verdict::spam), {0, 9}, {"a", "b", "c", "d", "e"});
    EXPECT_EQ(deciders.byErrors()[0].m_samples.size(), Deciders::maxSamples);
}

TEST(Deciders, DoNotCountMessagesThatNothingDecided) {
    Deciders deciders;
    deciders.add(judgedBy({}, Verdict::none), {5, 5}, {});
    EXPECT_TRUE(deciders.byUse().empty());
}

} // namespace
} // namespace Quorvane::Testing
