// SPDX-License-Identifier: Apache-2.0
//
// Rule files with every bit flipped and cut at every byte: what the engine loads means to it what
// it means to a second, plain opinion. And reloads of damaged files while scans run.
#include "LogCapture.h"
#include "rules/format/AttributeTable.h"
#include "support/Agreement.h"
#include "support/RuleFolder.h"
#include "support/SteadyScans.h"

#include <gtest/gtest.h>
#include <vector>

namespace Quorvane::Testing {
namespace {

// --- every bit and every length -----------------------------------------------------------------

std::string s_tree() {
    auto branch = node(Attribute::firstHeloDynamic, 1, 0.7);
    branch.childCount = 2;
    branch.children = {4, 5};
    auto nodes = treeOf({branch});
    nodes.push_back(leaf(Attribute::hopBehindFirst, 0, 0.97));
    nodes.push_back(leaf(Attribute::firstForged, 0, 0.02));
    return treeBytes(nodes);
}

std::string s_elite() {
    return eliteBytes(
        eliteHeader(3, SelectMode::highest, 1),
        {adjusting('r', -0.25, {{Attribute::firstHeloDynamic, 1, 1}}),
         deciding(9001, 0.96, 1.0, {{Attribute::firstForged, 0, 1}}),
         deciding(9002, 0.99, 1.0,
                  {{Attribute::firstForged, 0, 1}, {Attribute::hopBehindFirst, 1, 0}})});
}

// Vectors that reach every part of the undamaged rules.
std::vector<PlainRules::Vector> s_vectors() {
    std::vector<PlainRules::Vector> vectors;
    for (int bits = 0; bits < 8; ++bits) {
        PlainRules::Vector vector{};
        vector[Attribute::firstHeloDynamic] = bits & 1;
        vector[Attribute::firstForged] = bits >> 1 & 1;
        vector[Attribute::hopBehindFirst] = bits >> 2 & 1;
        vectors.push_back(vector);
    }
    return vectors;
}

void s_expectAgreement(std::string const& tree, std::string const& elite) {
    PlainRules const plain(tree, elite);
    auto const engine = engineOf(tree, elite);
    ASSERT_EQ(engine.has_value(), plain.isLoaded());
    if (!engine) {
        return;
    }
    for (bool const isWalkToLeaf : {false, true}) {
        PlainSettings settings;
        settings.m_isWalkToLeaf = isWalkToLeaf;
        for (auto const& vector : s_vectors()) {
            auto const record = engine->judge(vector, engineSettings(settings), RecordDepth::steps);
            ASSERT_EQ(picture(record), picture(plain.judge(vector, settings)));
        }
    }
}

std::string s_flipped(std::string bytes, std::size_t bit) {
    bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ (1 << bit % 8));
    return bytes;
}

TEST(DamagedRulesTest, EveryFlippedBitOfATreeIsReadOrRefused) {
    auto const tree = s_tree();
    for (std::size_t bit = 0; bit < tree.size() * 8; ++bit) {
        SCOPED_TRACE("bit " + std::to_string(bit));
        ASSERT_NO_FATAL_FAILURE(s_expectAgreement(s_flipped(tree, bit), s_elite()));
    }
}

TEST(DamagedRulesTest, EveryFlippedBitOfEliteRulesIsReadOrLeftOut) {
    auto const elite = s_elite();
    for (std::size_t bit = 0; bit < elite.size() * 8; ++bit) {
        SCOPED_TRACE("bit " + std::to_string(bit));
        ASSERT_NO_FATAL_FAILURE(s_expectAgreement(s_tree(), s_flipped(elite, bit)));
    }
}

TEST(DamagedRulesTest, EveryCutOfAFileIsReadAsFarAsItGoes) {
    for (std::size_t length = 0; length <= s_tree().size(); ++length) {
        SCOPED_TRACE("tree of " + std::to_string(length) + " bytes");
        ASSERT_NO_FATAL_FAILURE(s_expectAgreement(s_tree().substr(0, length), s_elite()));
    }
    for (std::size_t length = 0; length <= s_elite().size(); ++length) {
        SCOPED_TRACE("elite rules of " + std::to_string(length) + " bytes");
        ASSERT_NO_FATAL_FAILURE(s_expectAgreement(s_tree(), s_elite().substr(0, length)));
    }
}

// --- while scans run ----------------------------------------------------------------------------

constexpr int rounds = 30;
constexpr int threads = 3;

// The leaf of a whole set has the number 3 and the mark of the set.
std::vector<DTNode> s_marked(int number) {
    return treeOf({leaf(Attribute::hopBehindFirst, 0, markOf(number), 10.0 + number)});
}

bool s_isOfAWholeSet(DeepHeaderAnswer const& answer) {
    auto const number = numberIn(answer);
    return answer.getNode() == 3 && number >= 0 && number <= rounds &&
           answer.confidenceDegree() == static_cast<float>(markOf(number));
}

// Whole records, one of which no engine loads.
std::string s_refusedTree(int number) {
    auto nodes = s_marked(number);
    nodes.back().value1 = 0;
    return treeBytes(nodes);
}

TEST(DamagedRulesTest, ScansGoOnWithTheWholeRulesWhileDamagedOnesAreLoaded) {
    RuleFolder const rules;
    LogCapture log;
    DeepHeaderScanner scanner;
    rules.writeTree(s_marked(0));
    scanner.init();
    SteadyScans scans(threads, s_isOfAWholeSet);
    for (int number = 1; number <= rounds; ++number) {
        rules.writeFile(treeFileName, s_refusedTree(number));
        scanner.init();
        EXPECT_EQ(numberIn(scanOnce()), number - 1) << "the rules in force stay";
        rules.remove(treeFileName);
        scanner.init();
        EXPECT_EQ(numberIn(scanOnce()), number - 1) << "the rules in force stay";
        // Elite rules that are cut off are left out.
        rules.writeFile(eliteFileName, s_elite().substr(0, static_cast<std::size_t>(number)));
        rules.writeTree(s_marked(number));
        scanner.init();
        EXPECT_EQ(numberIn(scanOnce()), number) << "whole rules are loaded again";
    }
    EXPECT_EQ(scans.stop(), 0U);
    EXPECT_GT(scans.scanned(), 0U);
    EXPECT_EQ(log.take().size(), 2U * rounds) << "each failed load is reported once";
}

} // namespace
} // namespace Quorvane::Testing
