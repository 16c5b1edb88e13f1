// SPDX-License-Identifier: Apache-2.0
#include "apps/common/RuleStory.h"

#include "rules/format/AttributeTable.h"
#include "rules/format/ValueWords.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace Quorvane {

namespace {

using Record = DeepHeaderAdapter::MsgProperties;

bool s_isAttribute(std::int32_t attribute) {
    return attribute >= 0 && attribute <= maxAttribute;
}

bool s_holds(EliteCondition const& condition, Record const& record) {
    if (!s_isAttribute(condition.attribute) || condition.test < 0 || condition.test > maxTest) {
        return false;
    }
    auto const value = record.attributes[static_cast<std::size_t>(condition.attribute)];
    return (value == condition.value) == (condition.test == 0);
}

std::string s_conditions(EliteNodes const& rule) {
    std::string text;
    for (auto const& condition : rule.conditions) {
        text += (text.empty() ? "" : " and ") +
                testText(condition.attribute, condition.test, condition.value);
    }
    return text.empty() ? "always" : text;
}

std::string s_signed(double value) {
    return (value < 0 ? "" : "+") + numberText(value);
}

std::string s_letter(std::int32_t code) {
    auto const letter = static_cast<unsigned char>(code & 0xFF);
    return letter > 0x20 && letter < 0x7F ? std::string(1, static_cast<char>(letter))
                                          : std::to_string(int{letter});
}

std::string s_eliteLine(EliteNodes const& rule, DeepHeaderAdapter::EliteHits const& hits) {
    if (rule.type == EliteType::adjusting) {
        return "rule " + s_letter(rule.code) + " adjusts by " + s_signed(rule.weight) + ": " +
               s_conditions(rule);
    }
    bool const isChosen = rule.code == hits.code && rule.weight == hits.confidence;
    return "rule " + std::to_string(rule.code) + " says " + numberText(rule.weight) + " spam" +
           (isChosen ? "" : " (another was chosen)") + ": " + s_conditions(rule);
}

bool s_fired(EliteNodes const& rule, Record const& record, DeepHeaderSettings const& settings) {
    bool const isKnown = rule.type == EliteType::adjusting ||
                         (rule.type == EliteType::deciding && rule.support >= settings.minSupport);
    return isKnown && rule.level <= settings.maxEliteLevel &&
           std::all_of(
               rule.conditions.begin(), rule.conditions.end(),
               [&record](EliteCondition const& condition) { return s_holds(condition, record); });
}

DTNode const& s_node(DeepHeaderAdapter const& engine, int number) {
    return engine.treeNodes()[static_cast<std::size_t>(number)];
}

std::string s_nodeLine(int number, DTNode const& node, bool isRoot) {
    auto line = "node " + std::to_string(number) + ": ";
    line += isRoot ? "the root" : testText(node.attribute, node.test, node.testValue);
    return line + "; " + numberText(node.confidence) + " spam, seen in " +
           numberText(node.support) + " % of the training mail";
}

std::string s_end(DTNode const& last, int result, DeepHeaderSettings const& settings) {
    if (result < 0) {
        return "no branch of the tree fits: no decision";
    }
    if (last.isLeaf != 0) {
        return "a leaf";
    }
    bool const isSure = settings.walkToLeaf == 0 && last.confidence >= settings.spamThreshold;
    return isSure ? "sure enough of spam to stop here"
                  : "the branch that fits was seen too rarely in training";
}

} // namespace

std::string testText(std::int32_t attribute, std::int32_t test, std::int32_t value) {
    auto const relation = test == 0 ? " is " : " is not ";
    if (!s_isAttribute(attribute)) {
        return "attribute " + std::to_string(attribute) + relation + std::to_string(value);
    }
    auto const index = static_cast<std::size_t>(attribute);
    return std::string(attributeTable[index].m_name) + relation + valueText(index, value);
}

std::string numberText(double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.4g", value);
    return text.data();
}

std::vector<AttributeLine> tellAttributes(Record const& record) {
    std::vector<AttributeLine> lines;
    for (auto const& facts : attributeTable) {
        auto const value = record.attributes[facts.m_index];
        if (value != facts.m_start) {
            lines.push_back({std::string(facts.m_name), valueText(facts.m_index, value),
                             std::string(facts.m_meaning)});
        }
    }
    return lines;
}

std::vector<std::string> tellElite(DeepHeaderAdapter const& engine, ScanOutcome const& outcome,
                                   DeepHeaderSettings const& settings) {
    std::vector<std::string> lines;
    auto const& hits = outcome.m_elite;
    for (auto const& rule : engine.eliteNodes()) {
        if (!s_fired(rule, outcome.m_record, settings)) {
            continue;
        }
        lines.push_back(s_eliteLine(rule, hits));
        // The first deciding rule ends the run in this mode.
        if (rule.type == EliteType::deciding &&
            engine.eliteHeader().selectMode == SelectMode::first) {
            break;
        }
    }
    return lines;
}

std::vector<std::string> tellPath(DeepHeaderAdapter const& engine, ScanOutcome const& outcome,
                                  DeepHeaderSettings const& settings) {
    std::vector<std::string> lines;
    for (int const number : outcome.m_treePath) {
        lines.push_back(s_nodeLine(number, s_node(engine, number), lines.empty()));
    }
    if (!lines.empty()) {
        lines.push_back(
            s_end(s_node(engine, outcome.m_treePath.back()), outcome.m_treeResult, settings));
    }
    return lines;
}

} // namespace Quorvane
