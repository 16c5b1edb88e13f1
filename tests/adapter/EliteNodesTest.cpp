// SPDX-License-Identifier: Apache-2.0
#include "Engine.h"
#include "rules/format/AttributeTable.h"

#include <limits>

namespace Quorvane::Testing {
namespace {

class EliteNodesTest : public EngineTest {
  protected:
    std::unique_ptr<DeepHeaderAdapter> load(EliteFileHeader const& header,
                                            std::vector<EliteNodes> const& nodes) {
        return load(eliteBytes(header, nodes));
    }

    std::unique_ptr<DeepHeaderAdapter> load(std::string const& bytes) {
        m_rules.writeFile(eliteFileName, bytes);
        return std::make_unique<DeepHeaderAdapter>();
    }

    // Loads `nodes` under `selectMode` and runs them over m_props.
    EliteHits run(std::int32_t selectMode, std::vector<EliteNodes> const& nodes,
                  DeepHeaderSettings const& settings = {}) {
        auto const header = eliteHeader(static_cast<std::int32_t>(nodes.size()), selectMode);
        auto const engine = load(header, nodes);
        EliteHits hits;
        EXPECT_EQ(engine->checkElite(hits, m_props, settings), 0);
        return hits;
    }

    static std::vector<int> codes(DeepHeaderAdapter const& engine) {
        std::vector<int> codes;
        for (auto const& node : engine.eliteNodes()) {
            codes.push_back(node.code);
        }
        EXPECT_EQ(engine.eliteHeader().nodeCount, static_cast<int>(codes.size()));
        return codes;
    }

    MsgProperties m_props; // firstHeloDynamic stays 0
};

using Codes = std::vector<int>;

constexpr EliteCondition holds{Attribute::firstHeloDynamic, Comparison::equals, 0};
constexpr EliteCondition fails{Attribute::firstHeloDynamic, Comparison::equals, 1};

// --- loading ------------------------------------------------------------------------------------

TEST_F(EliteNodesTest, WithoutFileThereAreNone) {
    EXPECT_FALSE(engine().hasEliteNodes());
    EXPECT_EQ(engine().eliteHeader().nodeCount, 0);
}

TEST_F(EliteNodesTest, AFolderInPlaceOfTheFileIsLikeNone) {
    std::filesystem::create_directory(m_rules.path(eliteFileName));
    EXPECT_FALSE(engine().hasEliteNodes());
}

TEST_F(EliteNodesTest, AShortHeaderIsLikeNoFile) {
    auto const header = eliteBytes(eliteHeader(3, 1, 1), {});
    EXPECT_FALSE(load(header.substr(0, 31))->hasEliteNodes());
    EXPECT_FALSE(load("")->hasEliteNodes());
}

TEST_F(EliteNodesTest, KeepsNodesAndConditionsInFileOrder) {
    auto const engine =
        load(eliteHeader(2, 3, 1), {deciding(7, 0.5, 1.0, {holds, fails}), adjusting('a', 0.25)});
    EXPECT_EQ(codes(*engine), (Codes{7, 'a'}));
    EXPECT_EQ(engine->eliteHeader().selectMode, 3);
    EXPECT_EQ(engine->eliteHeader().alsoWalkTree, 1);
    auto const& first = engine->eliteNodes().front();
    EXPECT_EQ(first.weight, 0.5);
    EXPECT_EQ(first.support, 1.0);
    ASSERT_EQ(first.conditions.size(), 2U);
    EXPECT_EQ(first.conditions.front().value, 0);
    EXPECT_EQ(first.conditions.back().value, 1);
}

TEST_F(EliteNodesTest, WhatWasReadBeforeTheFileEndsIsKept) {
    std::vector<EliteNodes> const nodes = {deciding(1, 0.5, 1.0, {holds}), deciding(2, 0.5, 1.0)};
    EXPECT_EQ(codes(*load(eliteHeader(3, 1), nodes)), (Codes{1, 2}));
    auto const cut = eliteBytes(eliteHeader(3, 1), {nodes[0], nodes[0], nodes[1]});
    EXPECT_EQ(codes(*load(cut.substr(0, 32 + 52 + 51))), (Codes{1})) << "a condition is cut off";
    EXPECT_EQ(codes(*load(cut.substr(0, 32 + 52 + 39))), (Codes{1})) << "a node is cut off";
}

TEST_F(EliteNodesTest, AnnouncedCountsBelow1ReadNothing) {
    for (std::int32_t const count : {0, -1, -2147483647 - 1}) {
        EXPECT_EQ(codes(*load(eliteHeader(count, 1), {deciding(1, 0.5, 1.0)})), Codes{}) << count;
    }
}

TEST_F(EliteNodesTest, OnlyAsManyNodesAsAnnouncedAreRead) {
    EXPECT_EQ(codes(*load(eliteHeader(1, 1), {deciding(1, 0.5, 1.0), deciding(2, 0.5, 1.0)})),
              (Codes{1}));
}

TEST_F(EliteNodesTest, ADroppedNodeLeavesTheFileInStep) {
    auto flagged = deciding(1, 0.5, 1.0, {holds, holds});
    flagged.flag = 2;
    auto const badAttribute = deciding(2, 0.5, 1.0, {{38, 0, 0}, holds});
    auto const badTest = deciding(3, 0.5, 1.0, {{Attribute::firstHeloDynamic, 2, 0}, holds});
    EXPECT_EQ(
        codes(*load(eliteHeader(4, 1), {flagged, badAttribute, badTest, deciding(4, 0.5, 1.0)})),
        (Codes{4}));
}

TEST_F(EliteNodesTest, DroppedNodesCountAsRead) {
    auto flagged = deciding(1, 0.5, 1.0);
    flagged.flag = 2;
    EXPECT_EQ(
        codes(*load(eliteHeader(2, 1), {flagged, deciding(2, 0.5, 1.0), deciding(3, 0.5, 1.0)})),
        (Codes{2}));
}

TEST_F(EliteNodesTest, FlagsUpTo1AreKept) {
    auto negative = deciding(1, 0.5, 1.0);
    negative.flag = -5;
    auto one = deciding(2, 0.5, 1.0);
    one.flag = 1;
    EXPECT_EQ(codes(*load(eliteHeader(2, 1), {negative, one})), (Codes{1, 2}));
}

TEST_F(EliteNodesTest, MoreThan100ConditionsEndTheLoad) {
    auto const hundred = deciding(1, 0.5, 1.0, std::vector<EliteCondition>(100, holds));
    auto const tooMany = deciding(2, 0.5, 1.0, std::vector<EliteCondition>(101, holds));
    EXPECT_EQ(codes(*load(eliteHeader(3, 1), {hundred, tooMany, deciding(3, 0.5, 1.0)})),
              (Codes{1}));
}

TEST_F(EliteNodesTest, ANegativeConditionCountReadsNone) {
    auto odd = deciding(1, 0.5, 1.0);
    odd.conditionCount = -3;
    EXPECT_EQ(codes(*load(eliteHeader(2, 1), {odd, deciding(2, 0.5, 1.0)})), (Codes{1, 2}));
}

TEST_F(EliteNodesTest, ReadingStopsAfter5001Nodes) {
    std::vector<EliteNodes> const nodes(5003, deciding(1, 0.5, 1.0));
    EXPECT_EQ(codes(*load(eliteHeader(5003, 1), nodes)).size(), 5001U);
}

// --- conditions ---------------------------------------------------------------------------------

TEST_F(EliteNodesTest, ANodeMatchesWhenAllItsConditionsHold) {
    struct {
        char const* m_why;
        std::vector<EliteCondition> m_conditions;
        bool m_matches;
    } const rows[] = {
        {"no conditions", {}, true},
        {"equal", {{Attribute::firstHeloDynamic, Comparison::equals, 0}}, true},
        {"not equal", {{Attribute::firstHeloDynamic, Comparison::equals, 1}}, false},
        {"differs", {{Attribute::firstHeloDynamic, Comparison::differs, 1}}, true},
        {"does not differ", {{Attribute::firstHeloDynamic, Comparison::differs, 0}}, false},
        {"all hold",
         {{Attribute::firstHeloDynamic, Comparison::equals, 0},
          {Attribute::messageIdMatchesReverse, Comparison::equals, 2}},
         true},
        {"one fails",
         {{Attribute::firstHeloDynamic, Comparison::equals, 0},
          {Attribute::messageIdMatchesReverse, Comparison::equals, 1}},
         false},
        {"a test of -1 never holds", {{Attribute::firstHeloDynamic, -1, 0}}, false},
        {"a negative attribute never holds", {{-1, 0, 0}}, false},
        {"a negative attribute never differs either", {{-1, 1, 0}}, false},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(run(2, {deciding(9, 0.5, 1.0, row.m_conditions)}).code, row.m_matches ? 9 : 0)
            << row.m_why;
    }
}

TEST_F(EliteNodesTest, ANodeOfAHigherLevelIsSkipped) {
    auto high = deciding(9, 0.5, 1.0);
    high.level = 2;
    EXPECT_EQ(run(1, {high}).code, 0);
    DeepHeaderSettings settings;
    settings.maxEliteLevel = 2;
    EXPECT_EQ(run(1, {high}, settings).code, 9);
    high.level = -3;
    settings.maxEliteLevel = -3;
    EXPECT_EQ(run(1, {high}, settings).code, 9);
}

TEST_F(EliteNodesTest, OtherTypesNeverFire) {
    for (std::int32_t const type : {0, 3, -1}) {
        auto node = deciding(9, 0.5, 1.0);
        node.type = type;
        auto const hits = run(1, {node});
        EXPECT_EQ(hits.code, 0);
        EXPECT_EQ(hits.adjust, 0.0);
    }
}

// --- adjusting and choosing ---------------------------------------------------------------------

TEST_F(EliteNodesTest, AdjustingNodesAddUpAndLeaveTheirLetters) {
    auto const hits =
        run(1, {adjusting('a', 0.25), adjusting('x', 9.0, {fails}), adjusting('b', -0.5)});
    EXPECT_EQ(hits.adjust, -0.25);
    EXPECT_EQ(hits.reasons, "ab");
    EXPECT_EQ(hits.code, 0);
    EXPECT_EQ(hits.support, 0.0);
}

TEST_F(EliteNodesTest, TheLetterIsTheLowByteOfTheCode) {
    auto node = adjusting('a', 1.0);
    node.code = 0x7fffff41;
    EXPECT_EQ(run(1, {node}).reasons, "A");
    node.code = 0x100;
    EXPECT_EQ(run(1, {node}).reasons, std::string(1, '\0'));
}

TEST_F(EliteNodesTest, AdjustingNodesNeedNoSupport) {
    auto node = adjusting('a', 1.0);
    node.support = -1.0;
    EXPECT_EQ(run(1, {node}).reasons, "a");
}

TEST_F(EliteNodesTest, DecidingNodesNeedTheSupportThatIsAskedFor) {
    DeepHeaderSettings settings;
    settings.minSupport = 1.0;
    EXPECT_EQ(run(1, {deciding(9, 0.5, 1.0)}, settings).code, 9);
    EXPECT_EQ(run(1, {deciding(9, 0.5, 0.99)}, settings).code, 0);
    auto const nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(run(1, {deciding(9, 0.5, nan)}, settings).code, 0);
    settings.minSupport = nan;
    EXPECT_EQ(run(1, {deciding(9, 0.5, 1.0)}, settings).code, 0);
}

TEST_F(EliteNodesTest, AModePicksOneOfSeveralMatches) {
    struct {
        std::int32_t m_mode;
        std::vector<double> m_weights; // of nodes 1, 2, 3
        int m_chosen;
    } const rows[] = {
        {1, {0.7, 0.9, 0.8}, 1}, {2, {0.7, 0.9, 0.8}, 3}, {3, {0.7, 0.9, 0.8}, 2},
        {3, {0.7, 0.9}, 2},      {3, {0.9, 0.9}, 1},      {4, {0.7, 0.9, 0.8}, 1},
        {4, {0.9, 0.7, 0.8}, 2}, {4, {0.7, 0.7}, 1},      {0, {0.7, 0.9, 0.8}, 1},
        {5, {0.7, 0.9, 0.8}, 1},
    };
    for (auto const& row : rows) {
        std::vector<EliteNodes> nodes;
        for (auto const weight : row.m_weights) {
            nodes.push_back(deciding(static_cast<int>(nodes.size()) + 1, weight, 1.0));
        }
        auto const hits = run(row.m_mode, nodes);
        EXPECT_EQ(hits.code, row.m_chosen) << "mode " << row.m_mode;
        EXPECT_EQ(hits.confidence, row.m_weights[static_cast<std::size_t>(row.m_chosen) - 1]);
        EXPECT_EQ(hits.support, 1.0);
    }
}

TEST_F(EliteNodesTest, OnlyTheFirstMatchModeEndsTheRun) {
    for (std::int32_t const mode : {0, 1, 2, 3, 4}) {
        auto const hits = run(mode, {adjusting('a', 1.0), deciding(9, 0.5, 1.0, {fails}),
                                     deciding(8, 0.5, 1.0), adjusting('b', 1.0)});
        EXPECT_EQ(hits.reasons, mode == 1 ? "a" : "ab") << "mode " << mode;
        EXPECT_EQ(hits.code, 8);
    }
}

TEST_F(EliteNodesTest, ATakenNodeWithCode0IsReplacedByTheNextMatch) {
    EXPECT_EQ(run(3, {deciding(0, 0.9, 1.0), deciding(2, 0.1, 1.0)}).code, 2);
    EXPECT_EQ(run(4, {deciding(0, 0.1, 1.0), deciding(2, 0.9, 1.0)}).code, 2);
    EXPECT_EQ(run(1, {deciding(0, 0.1, 1.0), deciding(2, 0.9, 1.0)}).code, 0) << "the run ended";
}

} // namespace
} // namespace Quorvane::Testing
