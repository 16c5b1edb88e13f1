// SPDX-License-Identifier: Apache-2.0
//
// Random rule files for property tests: mostly ordinary fields, so that trees hang together, with
// every odd value that a loader lets pass mixed in.
#pragma once

#include "rules/model/RuleNames.h"
#include "rules/model/RuleSet.h"
#include "support/EliteHeader.h"

#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <rapidcheck/gtest.h>

namespace Quorvane::Testing {

using Rules::Bytes;
using Rules::RuleSet;

inline rc::Gen<std::int32_t> genInteger(std::int32_t below) {
    return rc::gen::weightedOneOf<std::int32_t>(
        {{20, rc::gen::inRange<std::int32_t>(0, below)},
         {1, rc::gen::arbitrary<std::int32_t>()},
         {1, rc::gen::element<std::int32_t>(-1, 0, 499, 500, 0x7fffffff, -0x7fffffff - 1)}});
}

inline rc::Gen<double> genNumber() {
    auto const ofBits = rc::gen::map(rc::gen::arbitrary<std::uint64_t>(), [](std::uint64_t bits) {
        double number = 0;
        std::memcpy(&number, &bits, sizeof number);
        return number;
    });
    return rc::gen::weightedOneOf<double>(
        {{10, rc::gen::element(0.0, 0.15, 0.5, 0.95, 1.0, 100.0)},
         {2, ofBits},
         {1, rc::gen::element(-0.0, std::numeric_limits<double>::quiet_NaN(),
                              std::numeric_limits<double>::infinity())}});
}

template<std::size_t size>
std::array<std::uint8_t, size> genReserved() {
    std::array<std::uint8_t, size> bytes{};
    if (*rc::gen::inRange(0, 8) == 0) {
        for (auto& byte : bytes) {
            byte = *rc::gen::arbitrary<std::uint8_t>();
        }
    }
    return bytes;
}

inline std::int32_t genRarely() {
    return *rc::gen::inRange(0, 8) == 0 ? *rc::gen::arbitrary<std::int32_t>() : 0;
}

// A record that the loader takes at any place of a file of `count` records.
inline DTNode genNode(std::int32_t count) {
    DTNode node{};
    node.attribute = std::min(*genInteger(38), maxAttribute);
    node.test = std::min(*genInteger(2), Comparison::differs);
    node.testValue = *genInteger(4);
    node.isLeaf = *rc::gen::element<std::uint8_t>(0, 0, 0, 1, 1, 7);
    node.reserved1 = genReserved<3>();
    node.reserved2 = genRarely();
    node.childCount = *genInteger(4);
    for (int i = 0; i < std::min<int>(node.childCount, maxChildren); ++i) {
        node.children[static_cast<std::size_t>(i)] = *genInteger(std::max(count, 1));
    }
    if (*rc::gen::inRange(0, 10) == 0) {
        node.children.back() = *rc::gen::arbitrary<std::int32_t>();
    }
    node.value1 = std::max(*genInteger(3), 1);
    node.value2 = *genInteger(3);
    node.value3 = *genInteger(3);
    node.confidence = *genNumber();
    node.support = *genNumber();
    return node;
}

inline Bytes genBytes(std::size_t below) {
    auto const size = *rc::gen::inRange<std::size_t>(0, below);
    return *rc::gen::container<Bytes>(size, rc::gen::arbitrary<char>());
}

inline void genTree(RuleSet& set) {
    auto const count = *rc::gen::weightedOneOf<std::int32_t>(
        {{12, rc::gen::inRange(0, 25)}, {1, rc::gen::inRange(0, maxTreeNodes + 1)}});
    for (std::int32_t i = 0; i < count; ++i) {
        auto const isZero = i <= treeRoot && *rc::gen::arbitrary<bool>();
        set.m_nodes.push_back(isZero ? DTNode{} : genNode(count));
    }
    set.m_treeTail = *rc::gen::inRange(0, 4) == 0 ? genBytes(sizeof(DTNode)) : Bytes();
}

inline EliteNodes genRule() {
    EliteNodes rule{};
    rule.code = *genInteger(200);
    rule.weight = *genNumber();
    rule.support = *genNumber();
    rule.flag = genRarely();
    rule.type = *genInteger(4);
    rule.level = *genInteger(3);
    rule.reserved = genRarely();
    rule.conditionCount = *rc::gen::element(-3, 0, 1, 2, 3, 100);
    for (std::int32_t i = 0; i < rule.conditionCount; ++i) {
        rule.conditions.push_back({*genInteger(38), *genInteger(2), *genInteger(4)});
    }
    return rule;
}

inline Rules::EliteFile genElite() {
    Rules::EliteFile elite;
    elite.m_header = plainEliteHeader();
    for (int left = *rc::gen::inRange(0, 6); left > 0; --left) {
        elite.m_rules.push_back(genRule());
    }
    elite.m_header->reserved1 = genRarely();
    elite.m_header->nodeCount = static_cast<std::int32_t>(elite.m_rules.size()) +
                                *rc::gen::element(0, 0, 0, -1, 1, 1000000);
    elite.m_header->reserved2 = genRarely();
    elite.m_header->selectMode = *genInteger(6);
    elite.m_header->alsoWalkTree = *genInteger(3);
    elite.m_header->reserved3 = genReserved<12>();
    elite.m_tail = *rc::gen::inRange(0, 4) == 0 ? genBytes(90) : Bytes();
    return elite;
}

// A name that can be used, and perhaps a sentence.
inline Rules::RuleName genName() {
    auto const words =
        rc::gen::container<std::string>(rc::gen::element('a', 'Z', '(', '#', '\'', ' '));
    auto const sentences =
        rc::gen::container<std::string>(rc::gen::element('a', '"', '\\', ';', '{'));
    return {"N" + (*words).substr(0, 50) + ".", (*sentences).substr(0, Rules::maxSentenceLength)};
}

inline Rules::RuleKey genRuleKey() {
    using Kind = Rules::RuleKey::Kind;
    return {*rc::gen::element(Kind::decide, Kind::adjust, Kind::node), *genInteger(200)};
}

// Of rules that are there, and of others.
inline Rules::RuleNames genNames(RuleSet const& set) {
    Rules::RuleNames names;
    for (int count = *rc::gen::inRange(0, 4); count > 0; --count) {
        names[genRuleKey()] = genName();
    }
    for (auto const& rule : set.m_elite ? set.m_elite->m_rules : std::vector<EliteNodes>()) {
        if (rule.type == EliteType::adjusting || rule.type == EliteType::deciding) {
            auto const kind = rule.type == EliteType::deciding ? Rules::RuleKey::Kind::decide
                                                               : Rules::RuleKey::Kind::adjust;
            names[{kind, rule.code}] = genName();
        }
    }
    return names;
}

} // namespace Quorvane::Testing
