// SPDX-License-Identifier: Apache-2.0
//
// What the numbers of a rule file do when engines load and run the rules: which records a loader
// accepts, when a test holds, where a walk goes on, which rule replaces which. The engine, the
// checker, the compiler and every display ask here.
//
// A comparison with a NaN is false, so the conditions are written in the direction that then
// matters.
#pragma once

#include "rules/format/AttributeTable.h"
#include "rules/format/RuleFiles.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace Quorvane {

using AttributeVector = std::array<std::int32_t, attributeCount>;

static_assert(maxAttribute + 1 == attributeTable.size());

constexpr bool isAttribute(std::int32_t index) {
    return index >= 0 && index <= maxAttribute;
}

// REQUIRES: isAttribute(index), here and in `admits`.
constexpr std::int32_t attributeValue(AttributeVector const& attributes, std::int32_t index) {
    return attributes[static_cast<std::size_t>(index)];
}

// What the loaders accept. They look at upper bounds only: a negative attribute or test is loaded,
// and then never holds or ends the walk.

constexpr bool isLoadedAttribute(std::int32_t attribute) {
    return attribute <= maxAttribute;
}

constexpr bool isLoadedTest(std::int32_t test) {
    return test <= Comparison::differs;
}

constexpr bool isLoadedCount(std::int32_t value1) {
    return value1 >= 1;
}

// Whether the loader checks a record of the tree: the first ones belong to the program that wrote
// the file, and no message is tested to enter the root.
constexpr bool isCheckedNode(std::int32_t number) {
    return number > treeRoot;
}

// Whether a record that is checked lets the file be loaded.
constexpr bool isLoadedNode(DTNode const& node) {
    return isLoadedAttribute(node.attribute) && isLoadedTest(node.test) &&
           isLoadedCount(node.value1);
}

constexpr bool isLoadedFlag(std::int32_t flag) {
    return flag <= maxEliteFlag;
}

constexpr bool isLoadedCondition(EliteCondition const& condition) {
    return isLoadedAttribute(condition.attribute) && isLoadedTest(condition.test);
}

// Whether the loader keeps an elite rule that it has read; the others are dropped one by one.
inline bool isKeptRule(EliteNodes const& rule) {
    return isLoadedFlag(rule.flag) &&
           std::all_of(rule.conditions.begin(), rule.conditions.end(), isLoadedCondition);
}

// The walk along the tree.

// Every test but "equals" counts as "differs" here, unlike in the condition of an elite rule.
constexpr bool isEqualityTest(std::int32_t test) {
    return test == Comparison::equals;
}

// The test that admits a message to a node.
constexpr EliteCondition testOf(DTNode const& node) {
    return {node.attribute, node.test, node.testValue};
}

constexpr bool admits(DTNode const& node, AttributeVector const& attributes) {
    auto const isEqual = attributeValue(attributes, node.attribute) == node.testValue;
    return isEqual == isEqualityTest(node.test);
}

// The walk gives up at a node with more children than slots, and at a child that is not in the
// table. Node 0 is what an empty slot names, and no tree may have it as a child.
constexpr bool hasTooManyChildren(DTNode const& node) {
    return node.childCount > maxChildren;
}

constexpr bool isChildIndex(std::int32_t number) {
    return number >= 1 && number < treeTableSize;
}

// Whether training has seen enough messages for a node or a deciding rule to be used.
constexpr bool isSupported(double support, double minSupport) {
    return support >= minSupport;
}

// Whether the walk ends at a node because it is a leaf, or sure enough of spam.
constexpr bool isLeaf(DTNode const& node) {
    return node.isLeaf != 0;
}

constexpr bool isSure(DTNode const& node, bool isWalkToLeaf, double spamThreshold,
                      double minSupport) {
    return !isWalkToLeaf && node.confidence >= spamThreshold &&
           isSupported(node.support, minSupport);
}

// Whether the node at which a walk ended can decide; answers count the others as no verdict.
constexpr bool canDecide(std::int32_t number) {
    return number > treeRoot;
}

// The run over the elite rules.

// Whether the numbers of the condition are valid, so that it can hold for some message.
constexpr bool isRealCondition(EliteCondition const& condition) {
    return isAttribute(condition.attribute) &&
           (condition.test == Comparison::equals || condition.test == Comparison::differs);
}

constexpr bool holds(EliteCondition const& condition, AttributeVector const& attributes) {
    if (!isRealCondition(condition)) {
        return false;
    }
    auto const isEqual = attributeValue(attributes, condition.attribute) == condition.value;
    return isEqual == isEqualityTest(condition.test);
}

// The place of the first condition that does not hold; the number of conditions when the rule
// matches.
inline std::size_t firstFailing(EliteNodes const& rule, AttributeVector const& attributes) {
    auto const failing = std::find_if_not(
        rule.conditions.begin(), rule.conditions.end(),
        [&attributes](EliteCondition const& condition) { return holds(condition, attributes); });
    return static_cast<std::size_t>(std::distance(rule.conditions.begin(), failing));
}

constexpr bool isWithinLevel(EliteRecord const& rule, std::int32_t maxEliteLevel) {
    return rule.level <= maxEliteLevel;
}

// Whether a rule whose conditions hold does anything.
constexpr bool canFire(EliteRecord const& rule, double minSupport) {
    return rule.type == EliteType::adjusting ||
           (rule.type == EliteType::deciding && isSupported(rule.support, minSupport));
}

// The character that an adjusting rule with this code leaves in the answer.
constexpr unsigned char reasonByte(std::int32_t code) {
    return static_cast<unsigned char>(static_cast<std::uint32_t>(code) & 0xFFU);
}

constexpr bool isVisibleReason(unsigned char reason) {
    return reason > ' ' && reason <= '~';
}

// The code that answers "nothing decided yet": a chosen rule with this code is always replaced.
inline constexpr std::int32_t noDecisionCode = 0;

constexpr bool isSelectMode(std::int32_t mode) {
    return mode >= SelectMode::first && mode <= SelectMode::lowest;
}

constexpr bool endsRun(std::int32_t selectMode) {
    return selectMode == SelectMode::first;
}

// Whether a firing deciding rule of one weight replaces a chosen one of another.
constexpr bool replaces(std::int32_t selectMode, double weight, double chosenWeight) {
    switch (selectMode) {
    case SelectMode::last:
        return true;
    case SelectMode::highest:
        return weight > chosenWeight;
    case SelectMode::lowest:
        return weight < chosenWeight;
    default:
        return false;
    }
}

// Whether the tree is asked.

// A spam threshold from here on keeps the tree out.
inline constexpr double treeOffThreshold = 95.0;

constexpr bool isTreeOn(double spamThreshold) {
    return treeOffThreshold > spamThreshold;
}

constexpr bool letsTreeBeAsked(EliteFileHeader const& header) {
    return header.alsoWalkTree == 1;
}

// Whether the tree is asked when the elite rules have decided nothing.
constexpr bool isTreeAsked(bool hasEliteRules, bool isTreeLet, double spamThreshold) {
    return (!hasEliteRules || isTreeLet) && isTreeOn(spamThreshold);
}

} // namespace Quorvane
