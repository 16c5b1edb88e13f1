// SPDX-License-Identifier: Apache-2.0
#include "adapter/TestedAttributes.h"

#include "adapter/DeepHeaderAdapter.h"
#include "support/RuleFolder.h"

#include <gtest/gtest.h>
#include <sstream>

namespace Quorvane::Testing {
namespace {

using Numbers = std::vector<std::int32_t>;

Numbers s_tested(std::vector<DTNode> const& nodes, std::vector<EliteNodes> const& rules = {}) {
    std::istringstream tree(treeBytes(nodes));
    std::istringstream elite(
        eliteBytes(eliteHeader(static_cast<std::int32_t>(rules.size()), 1, 1), rules));
    RefDeepHeaderAdapter engine(new DeepHeaderAdapter(tree, &elite));
    return testedAttributes(*engine.operator->());
}

TEST(TestedAttributesTest, AreThoseOfEliteRulesAndOfNodesThatAWalkCanReach) {
    auto nodes = treeOf({node(29, 1, 0.5, 50), leaf(3, 0, 0.5)});
    nodes[3].childCount = 1;
    nodes[3].children[0] = 5;
    nodes.push_back(leaf(14, 1, 0.5));
    nodes.push_back(leaf(7, 1, 0.5)); // nothing leads here
    EXPECT_EQ(s_tested(nodes), (Numbers{3, 14, 29}));
    EXPECT_EQ(s_tested(nodes, {deciding(9, 0.9, 10, {{33, 0, 1}, {10, 1, 0}})}),
              (Numbers{3, 10, 14, 29, 33}));
}

TEST(TestedAttributesTest, RulesThatLeadInCirclesOrNowhereEnd) {
    auto nodes = treeOf({node(29, 1, 0.5, 50), node(3, 1, 0.5, 50)});
    nodes[3].childCount = 2;
    nodes[3].children = {3, 2};
    nodes[4].childCount = 11;
    nodes[4].children = {499, 0, -1, 500, 1000000, 3, 3, 3, 3, 3};
    EXPECT_EQ(s_tested(nodes), (Numbers{0, 3, 29}));
}

TEST(TestedAttributesTest, AnAttributeThatDoesNotExistIsLeftOut) {
    auto nodes = treeOf({leaf(-1, 0, 0.5)});
    EXPECT_EQ(s_tested(nodes), Numbers{});
}

} // namespace
} // namespace Quorvane::Testing
