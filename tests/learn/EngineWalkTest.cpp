// SPDX-License-Identifier: Apache-2.0
//
// Learned trees in the engine that will use them: the file is written, loaded and walked.
#include "adapter/DeepHeaderAdapter.h"
#include "rules/learn/CartGrower.h"
#include "rules/learn/Pruning.h"
#include "rules/learn/TreeRecords.h"
#include "support/RuleFolder.h"
#include "TrainingData.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

using Testing::counted;
using Testing::plantedMail;

class EngineWalk : public ::testing::Test {
  protected:
    void load(std::vector<DTNode> const& records) {
        m_folder.writeTree(records);
        m_engine = RefDeepHeaderAdapter(new DeepHeaderAdapter);
    }

    int walk(AttributeVector const& vector) {
        DeepHeaderAdapter::MsgProperties props;
        props.attributes = vector;
        return m_engine->travelDT(m_settings, treeRoot, props);
    }

    Testing::RuleFolder m_folder;
    RefDeepHeaderAdapter m_engine;
    DeepHeaderSettings m_settings;
};

TEST_F(EngineWalk, EndsInTheLeafThatTheLearnerMeant) {
    for (double const alpha : {0.0, 0.001, 0.01}) {
        auto const mail = plantedMail(21, 2000);
        auto tree = growTree(mail, LearnSettings{});
        tree = prunedTree(tree, weakestLinks(tree, ImpurityKind::entropy), alpha);
        ASSERT_GT(tree.leafCount(), 3U);
        auto const records = treeRecords(tree);
        load(records);
        for (auto const& row : mail) {
            auto const node = walk(row.m_vector);
            ASSERT_GT(node, treeRoot);
            auto const& leaf = tree.m_nodes[tree.leafOf(row.m_vector)];
            auto const& record = records[static_cast<std::size_t>(node)];
            ASSERT_EQ(record.isLeaf, 1);
            ASSERT_EQ(static_cast<std::uint64_t>(record.value2), leaf.m_counts.m_spam);
            ASSERT_EQ(static_cast<std::uint64_t>(record.value3), leaf.m_counts.m_ham);
        }
    }
}

TEST_F(EngineWalk, LeavesUndecidedWhatTheTrainingMailNeverHad) {
    load(treeRecords(growTree({counted({{5, 1}}, 80, 0), counted({}, 0, 80)}, LearnSettings{})));
    EXPECT_GT(walk(Testing::vectorOf({{5, 1}})), treeRoot);
    EXPECT_GT(walk(Testing::vectorOf({{5, 0}})), treeRoot);
    EXPECT_EQ(walk(Testing::vectorOf({{5, 8}})), -1);
}

TEST_F(EngineWalk, EntersEveryNodeAtTheSupportItWasLearnedWith) {
    // 15 of 10,000 messages are exactly the 0.15 % that the engine asks for by default.
    load(treeRecords(growTree({counted({{5, 1}}, 15, 0), counted({}, 0, 9985)}, LearnSettings{})));
    auto const node = walk(Testing::vectorOf({{5, 1}}));
    ASSERT_GT(node, treeRoot);
    EXPECT_EQ(m_engine->treeNodes().at(static_cast<std::size_t>(node)).value2, 15);
}

TEST_F(EngineWalk, DecidesNothingWhenNothingWasLearned) {
    load(treeRecords(growTree({counted({}, 5, 5)}, LearnSettings{})));
    EXPECT_EQ(walk(Testing::vectorOf({})), -1);
}

} // namespace
} // namespace Quorvane::Testing
