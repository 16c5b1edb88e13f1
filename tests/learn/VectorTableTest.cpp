// SPDX-License-Identifier: Apache-2.0
#include "rules/vectors/VectorTable.h"

#include "rules/vectors/LearnError.h"
#include "TrainingData.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

using Testing::vectorOf;

TEST(VectorTable, CountsEqualVectorsTogether) {
    VectorTableBuilder builder;
    builder.add(vectorOf({{5, 1}}), MailLabel::spam, "site");
    builder.add(vectorOf({{5, 1}}), MailLabel::spam, "site", 41);
    builder.add(vectorOf({{5, 1}}), MailLabel::ham, "site", 3);
    auto const table = builder.finish();
    ASSERT_EQ(table.rows().size(), 1U);
    EXPECT_EQ(table.all().front().m_counts, (LabelCounts{42, 3}));
}

TEST(VectorTable, StandsInSortedOrderWhateverTheOrderOfTheInput) {
    struct Addition {
        AttributeVector m_vector;
        MailLabel m_label;
        char const* m_corpus;
    };
    std::vector<Addition> additions;
    for (std::int32_t value = -3; value < 9; ++value) {
        additions.push_back({vectorOf({{12, value}}), MailLabel::spam, value % 2 ? "b" : "a"});
        additions.push_back({vectorOf({{37, value}}), MailLabel::ham, value % 3 ? "c" : "a"});
    }
    auto const tableOf = [&] {
        VectorTableBuilder builder;
        for (auto const& one : additions) {
            builder.add(one.m_vector, one.m_label, one.m_corpus);
        }
        return builder.finish();
    };
    auto const table = tableOf();
    std::mt19937 random(7);
    for (int round = 0; round < 20; ++round) {
        std::shuffle(additions.begin(), additions.end(), random);
        auto const other = tableOf();
        EXPECT_EQ(other.corpora(), table.corpora());
        ASSERT_EQ(other.rows().size(), table.rows().size());
        for (std::size_t i = 0; i < table.rows().size(); ++i) {
            EXPECT_EQ(other.rows()[i].m_vector, table.rows()[i].m_vector);
            EXPECT_EQ(other.rows()[i].m_byCorpus, table.rows()[i].m_byCorpus);
        }
    }
}

TEST(VectorTable, LeavesOneCorpusOut) {
    VectorTableBuilder builder;
    builder.add(vectorOf({{5, 1}}), MailLabel::spam, "a", 10);
    builder.add(vectorOf({{5, 1}}), MailLabel::ham, "b", 4);
    builder.add(vectorOf({{5, 2}}), MailLabel::ham, "b", 6);
    auto const table = builder.finish();
    ASSERT_EQ(table.corpora(), (std::vector<std::string>{"a", "b"}));
    auto const withoutB = table.without(1);
    ASSERT_EQ(withoutB.size(), 1U); // the vector that only b had is gone
    EXPECT_EQ(withoutB[0].m_counts, (LabelCounts{10, 0}));
    auto const onlyB = table.only(1);
    ASSERT_EQ(onlyB.size(), 2U);
    EXPECT_EQ(table.totalOf(1), (LabelCounts{0, 10}));
    EXPECT_EQ(table.total(), (LabelCounts{10, 10}));
}

TEST(VectorTable, CountsUpToTwoToThe53AndRefusesMore) {
    VectorTableBuilder builder;
    builder.add(vectorOf({}), MailLabel::spam, "a", maxTrainingMessages - 1);
    builder.add(vectorOf({}), MailLabel::ham, "a", 1);
    EXPECT_EQ(builder.finish().total().total(), maxTrainingMessages);
    EXPECT_THROW(builder.add(vectorOf({}), MailLabel::ham, "a", 1), LearnError);
}

TEST(VectorTable, ForgetsAdditionsOfNothing) {
    VectorTableBuilder builder;
    builder.add(vectorOf({{1, 1}}), MailLabel::spam, "a", 0);
    EXPECT_TRUE(builder.finish().rows().empty());
}

} // namespace
} // namespace Quorvane::Testing
