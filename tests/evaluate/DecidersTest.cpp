// SPDX-License-Identifier: Apache-2.0
#include "rules/evaluate/Deciders.h"

#include <gtest/gtest.h>

namespace Quorvane::Rules {
namespace {

JudgedVector s_judged(Verdict verdict, Decider decider) {
    JudgedVector judged;
    judged.m_verdict = verdict;
    judged.m_decider = decider;
    judged.m_confidence = 0.5;
    return judged;
}

TEST(Deciders, AddUpWhatTheyReachedAndWhereTheyErred) {
    Deciders deciders;
    deciders.add(s_judged(Verdict::spam, {false, 7}), {10, 2}, {"a"});
    deciders.add(s_judged(Verdict::spam, {false, 7}), {5, 1}, {"b"});
    deciders.add(s_judged(Verdict::ham, {false, 8}), {3, 30}, {"c"});
    deciders.add(s_judged(Verdict::none, {false, 9}), {40, 40}, {});
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
    deciders.add(s_judged(Verdict::spam, {false, 7}), {100, 0}, {});
    deciders.add(s_judged(Verdict::spam, {true, 7}), {1, 2}, {});
    deciders.add(s_judged(Verdict::ham, {false, 8}), {3, 1}, {});
    auto const byErrors = deciders.byErrors();
    ASSERT_EQ(byErrors.size(), 2U);
    EXPECT_EQ(byErrors[0].m_decider, (Decider{false, 8}));
    EXPECT_EQ(byErrors[1].m_decider, (Decider{true, 7})); // apart from the node of that number
}

TEST(Deciders, KeepFewSamples) {
    Deciders deciders;
    deciders.add(s_judged(Verdict::spam, {false, 7}), {0, 9}, {"a", "b", "c", "d", "e"});
    EXPECT_EQ(deciders.byErrors()[0].m_samples.size(), Deciders::maxSamples);
}

TEST(Deciders, DoNotCountMessagesThatNothingDecided) {
    Deciders deciders;
    deciders.add(s_judged(Verdict::none, {}), {5, 5}, {});
    EXPECT_TRUE(deciders.byUse().empty());
}

} // namespace
} // namespace Quorvane::Rules
