// SPDX-License-Identifier: Apache-2.0
#include "rules/adapt/TableSplit.h"

#include "TrainingData.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Rules;

TEST(TableSplit, DealsEveryMessageToOnePart) {
    auto const mail = plantedMail(1, 200);
    for (std::size_t const count : {1U, 2U, 3U, 7U}) {
        auto const parts = dealtOut(mail, count);
        ASSERT_EQ(parts.size(), count);
        std::map<AttributeVector, LabelCounts> sums;
        for (auto const& part : parts) {
            for (auto const& row : part) {
                EXPECT_NE(row.m_counts.total(), 0U);
                sums[row.m_vector] += row.m_counts;
            }
        }
        std::map<AttributeVector, LabelCounts> expected;
        for (auto const& row : mail) {
            expected[row.m_vector] += row.m_counts;
        }
        EXPECT_EQ(sums, expected) << count;
    }
}

TEST(TableSplit, PartsHaveTheSameSizeAndMake) {
    auto const mail = plantedMail(2, 200);
    auto const all = sumOf(mail);
    for (auto const& part : dealtOut(mail, 3)) {
        auto const counts = sumOf(part);
        EXPECT_NEAR(static_cast<double>(counts.m_spam), static_cast<double>(all.m_spam) / 3, 1);
        EXPECT_NEAR(static_cast<double>(counts.m_ham), static_cast<double>(all.m_ham) / 3, 1);
    }
}

TEST(TableSplit, RareVectorsDoNotAllGoToTheFirstPart) {
    CountedVectors mail;
    for (std::int32_t i = 0; i < 9; ++i) {
        mail.push_back(counted({{9, i}}, 1, 0));
    }
    for (auto const& part : dealtOut(mail, 3)) {
        EXPECT_EQ(part.size(), 3U);
    }
}

TEST(TableSplit, AllButOneAddsTheOthersUp) {
    auto const parts = dealtOut({counted({{5, 1}}, 7, 4), counted({{5, 0}}, 0, 1)}, 3);
    for (std::size_t leftOut = 0; leftOut < parts.size(); ++leftOut) {
        auto rest = sumOf(allBut(parts, leftOut));
        rest += sumOf(parts[leftOut]);
        EXPECT_EQ(rest, (LabelCounts{7, 5}));
    }
}

} // namespace Quorvane::Testing
