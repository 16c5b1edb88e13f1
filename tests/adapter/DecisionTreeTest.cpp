// SPDX-License-Identifier: Apache-2.0
#include "Engine.h"
#include "rules/format/AttributeTable.h"

#include <limits>

namespace Quorvane::Testing {
namespace {

class DecisionTreeTest : public EngineTest {
  protected:
    // The engine over `nodes`; null when it cannot be built.
    std::unique_ptr<DeepHeaderAdapter> load(std::vector<DTNode> const& nodes) {
        return load(treeBytes(nodes));
    }

    std::unique_ptr<DeepHeaderAdapter> load(std::string const& bytes) {
        m_rules.writeFile(treeFileName, bytes);
        return build();
    }

    static std::unique_ptr<DeepHeaderAdapter> build() {
        try {
            return std::make_unique<DeepHeaderAdapter>();
        } catch (Exception const& exception) {
            EXPECT_EQ(exception.stringParameter(), "Error loading the deep header rules");
            return nullptr;
        }
    }

    int walk(std::vector<DTNode> const& nodes, DeepHeaderSettings const& settings = {},
             int start = treeRoot) {
        auto const engine = load(nodes);
        return engine->travelDT(settings, start, m_props);
    }

    MsgProperties m_props; // firstHeloDynamic stays 0
};

std::vector<DTNode> s_leaves(std::size_t count) {
    return std::vector<DTNode>(count, leaf(Attribute::firstHeloDynamic, 0, 0.5));
}

// --- loading ------------------------------------------------------------------------------------

TEST_F(DecisionTreeTest, AMissingFileFailsTheLoad) {
    m_rules.remove(treeFileName);
    EXPECT_EQ(build(), nullptr);
}

TEST_F(DecisionTreeTest, AFolderInPlaceOfTheFileFailsTheLoad) {
    m_rules.remove(treeFileName);
    std::filesystem::create_directory(m_rules.path(treeFileName));
    EXPECT_EQ(build(), nullptr);
}

TEST_F(DecisionTreeTest, AnEmptyFileLoadsAndDecidesNothing) {
    EXPECT_EQ(walk({}), -1);
}

TEST_F(DecisionTreeTest, A499thRecordLoadsAndA500thDoesNot) {
    EXPECT_NE(load(s_leaves(499)), nullptr);
    EXPECT_EQ(load(s_leaves(500)), nullptr);
    EXPECT_EQ(load(s_leaves(600)), nullptr);
    EXPECT_NE(load(treeBytes(s_leaves(499)) + std::string(91, 'x')), nullptr);
}

TEST_F(DecisionTreeTest, RecordsFromIndex3OnAreChecked) {
    struct {
        char const* m_why;
        void (*m_change)(DTNode&);
        bool m_isAccepted;
    } const rows[] = {
        {"attribute 37", [](DTNode& node) { node.attribute = 37; }, true},
        {"attribute 38", [](DTNode& node) { node.attribute = 38; }, false},
        {"attribute 99", [](DTNode& node) { node.attribute = 99; }, false},
        {"attribute -1", [](DTNode& node) { node.attribute = -1; }, true},
        {"test 1", [](DTNode& node) { node.test = 1; }, true},
        {"test 2", [](DTNode& node) { node.test = 2; }, false},
        {"test -1", [](DTNode& node) { node.test = -1; }, true},
        {"value1 1", [](DTNode& node) { node.value1 = 1; }, true},
        {"value1 0", [](DTNode& node) { node.value1 = 0; }, false},
        {"value1 -1", [](DTNode& node) { node.value1 = -1; }, false},
    };
    for (auto const& row : rows) {
        for (std::size_t const index : {0U, 1U, 2U, 3U, 4U}) {
            auto nodes = s_leaves(5);
            row.m_change(nodes[index]);
            EXPECT_EQ(load(nodes) != nullptr, row.m_isAccepted || index < 3)
                << row.m_why << " at " << index;
        }
    }
}

TEST_F(DecisionTreeTest, ATrailingIncompleteRecordFillsItsSlotAsFarAsItGoes) {
    auto nodes = treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.5)});
    auto whole = treeBytes(nodes);
    auto const engine = load(whole.substr(0, whole.size() - 8)); // without the support
    ASSERT_NE(engine, nullptr);
    EXPECT_EQ(engine->treeNodes()[3].confidence, 0.5);
    EXPECT_EQ(engine->treeNodes()[3].support, 0.0);
    DeepHeaderSettings settings;
    settings.minSupport = 0.0;
    EXPECT_EQ(engine->travelDT(settings, treeRoot, m_props), 3);
}

TEST_F(DecisionTreeTest, AnIncompleteRecordIsNotChecked) {
    auto bad = leaf(99, 0, 0.5);
    auto whole = treeBytes(treeOf({bad}));
    EXPECT_EQ(load(whole), nullptr);
    EXPECT_NE(load(whole.substr(0, whole.size() - 1)), nullptr);
}

// --- walking ------------------------------------------------------------------------------------

TEST_F(DecisionTreeTest, GoesDownToTheLeafThatAdmitsTheMessage) {
    auto nodes = treeOf(
        {leaf(Attribute::firstHeloDynamic, 1, 0.1), node(Attribute::firstHeloDynamic, 0, 0.2)});
    nodes[4].childCount = 1;
    nodes[4].children[0] = 5;
    nodes.push_back(leaf(Attribute::deepHeloDynamic, 0, 0.9));
    EXPECT_EQ(walk(nodes), 5);
    m_props.attributes[Attribute::firstHeloDynamic] = 1;
    EXPECT_EQ(walk(nodes), 3);
    m_props.attributes[Attribute::firstHeloDynamic] = 2;
    EXPECT_EQ(walk(nodes), -1);
}

TEST_F(DecisionTreeTest, TheChildInTheLowerSlotWins) {
    EXPECT_EQ(walk(treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.1),
                           leaf(Attribute::firstHeloDynamic, 0, 0.9)})),
              3);
}

TEST_F(DecisionTreeTest, AnyTestButZeroAsksForADifferentValue) {
    for (std::int32_t const test : {1, -1, -7}) {
        auto differs = leaf(Attribute::firstHeloDynamic, 1, 0.1);
        differs.test = test;
        EXPECT_EQ(walk(treeOf({differs})), 3) << test;
        m_props.attributes[Attribute::firstHeloDynamic] = 1;
        EXPECT_EQ(walk(treeOf({differs})), -1) << test;
        m_props.attributes[Attribute::firstHeloDynamic] = 0;
    }
}

TEST_F(DecisionTreeTest, ATestOf5IsATestForADifferentValue) {
    // Only records below 3 may hold it; node 1 is reached because the root names it.
    auto nodes = treeOf({});
    nodes[treeRoot].childCount = 1;
    nodes[treeRoot].children[0] = 1;
    nodes[1] = leaf(Attribute::firstHeloDynamic, 1, 0.5);
    nodes[1].test = 5;
    EXPECT_EQ(walk(nodes), 1);
}

TEST_F(DecisionTreeTest, AChildOfTooLittleSupportLeavesTheWalkAtItsParent) {
    auto nodes = treeOf({node(Attribute::firstHeloDynamic, 0, 0.2, 10.0)});
    nodes[3].childCount = 1;
    nodes[3].children[0] = 4;
    nodes.push_back(leaf(Attribute::deepHeloDynamic, 0, 0.9, 0.1));
    EXPECT_EQ(walk(nodes), 3);
    DeepHeaderSettings settings;
    settings.minSupport = 0.1;
    EXPECT_EQ(walk(nodes, settings), 4);
    settings.minSupport = 10.5;
    EXPECT_EQ(walk(nodes, settings), 2);
}

TEST_F(DecisionTreeTest, NaNSupportIsTooLittle) {
    EXPECT_EQ(walk(treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.5,
                                std::numeric_limits<double>::quiet_NaN())})),
              2);
}

TEST_F(DecisionTreeTest, WithoutWalkingToTheLeafAConfidentInteriorNodeDecides) {
    auto nodes = treeOf({node(Attribute::firstHeloDynamic, 0, 0.9, 10.0)});
    nodes[3].childCount = 1;
    nodes[3].children[0] = 4;
    nodes.push_back(leaf(Attribute::deepHeloDynamic, 0, 0.1, 10.0));
    DeepHeaderSettings settings;
    settings.spamThreshold = 0.9;
    EXPECT_EQ(walk(nodes, settings), 4);
    settings.walkToLeaf = 0;
    EXPECT_EQ(walk(nodes, settings), 3);
    settings.spamThreshold = 0.91;
    EXPECT_EQ(walk(nodes, settings), 4);
}

TEST_F(DecisionTreeTest, AConfidentRootDecidesAtOnce) {
    auto nodes = treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.1)});
    nodes[treeRoot].confidence = 0.99;
    nodes[treeRoot].support = 100.0;
    DeepHeaderSettings settings;
    settings.spamThreshold = 0.9;
    settings.walkToLeaf = 0;
    EXPECT_EQ(walk(nodes, settings), 2);
    nodes[treeRoot].support = 0.1;
    EXPECT_EQ(walk(nodes, settings), 3);
    nodes[treeRoot].confidence = std::numeric_limits<double>::quiet_NaN();
    nodes[treeRoot].support = 100.0;
    EXPECT_EQ(walk(nodes, settings), 3);
}

// --- what a damaged file cannot do --------------------------------------------------------------

TEST_F(DecisionTreeTest, ChildrenOutsideTheTableEndTheWalk) {
    for (std::int32_t const child : {-1, 0, 500, 2147483647, -2147483647 - 1}) {
        auto nodes = treeOf(
            {leaf(Attribute::firstHeloDynamic, 1, 0.5), leaf(Attribute::firstHeloDynamic, 0, 0.5)});
        nodes[treeRoot].children[0] = child;
        EXPECT_EQ(walk(nodes), -1) << child;
    }
}

TEST_F(DecisionTreeTest, AChildBehindTheOneThatAdmitsIsNotLookedAt) {
    auto nodes = treeOf(
        {leaf(Attribute::firstHeloDynamic, 0, 0.5), leaf(Attribute::firstHeloDynamic, 0, 0.5)});
    nodes[treeRoot].children[1] = -1;
    EXPECT_EQ(walk(nodes), 3);
}

TEST_F(DecisionTreeTest, ChildCountsOutsideTheRecordEndTheWalk) {
    for (std::int32_t const count : {0, -1, 11, 2147483647}) {
        auto nodes = treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.5)});
        nodes[treeRoot].childCount = count;
        EXPECT_EQ(walk(nodes), -1) << count;
    }
}

TEST_F(DecisionTreeTest, AttributesOutsideTheVectorEndTheWalk) {
    auto nodes = treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.5)});
    nodes[3].attribute = -1;
    EXPECT_EQ(walk(nodes), -1);
    nodes = treeOf({});
    nodes[treeRoot].childCount = 1;
    nodes[treeRoot].children[0] = 1;
    nodes[1] = leaf(99, 0, 0.5);
    EXPECT_EQ(walk(nodes), -1);
}

TEST_F(DecisionTreeTest, TheSlotOfAMissingRecordIsAnInteriorNodeWithoutChildren) {
    auto nodes = treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.5)});
    nodes[treeRoot].children[0] = 400;
    EXPECT_EQ(walk(nodes), 2) << "its support of 0 keeps the walk at the root";
    DeepHeaderSettings settings;
    settings.minSupport = 0.0;
    EXPECT_EQ(walk(nodes, settings), -1);
}

TEST_F(DecisionTreeTest, AWalkInCirclesEnds) {
    auto nodes = treeOf({node(Attribute::firstHeloDynamic, 0, 0.5)});
    nodes[3].childCount = 1;
    nodes[3].children[0] = 3;
    EXPECT_EQ(walk(nodes), -1);
}

TEST_F(DecisionTreeTest, Node0NeverDecides) {
    auto nodes = treeOf({leaf(Attribute::firstHeloDynamic, 0, 0.5, 0.0)});
    nodes[0] = leaf(Attribute::firstHeloDynamic, 0, 0.5);
    EXPECT_EQ(walk(nodes, {}, 0), -1);
    nodes[0] = node(Attribute::firstHeloDynamic, 0, 0.99);
    nodes[0].childCount = 1;
    nodes[0].children[0] = 3;
    DeepHeaderSettings settings;
    EXPECT_EQ(walk(nodes, settings, 0), -1) << "it stays at node 0";
    settings.walkToLeaf = 0;
    settings.spamThreshold = 0.9;
    settings.minSupport = 0.0;
    EXPECT_EQ(walk(nodes, settings, 0), 3) << "node 0 never stops the walk";
}

TEST_F(DecisionTreeTest, StartsOutsideTheTableDecideNothing) {
    EXPECT_EQ(walk({}, {}, -1), -1);
    EXPECT_EQ(walk({}, {}, 500), -1);
}

} // namespace
} // namespace Quorvane::Testing
