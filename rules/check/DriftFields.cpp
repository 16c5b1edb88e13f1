// SPDX-License-Identifier: Apache-2.0
#include "rules/check/DriftFields.h"

#include "rules/language/Literals.h"
#include "rules/language/RuleText.h"

#include <cstring>

namespace Quorvane::Rules {

namespace {

template<std::size_t size>
std::string s_hex(std::array<std::uint8_t, size> const& bytes) {
    return hexText({reinterpret_cast<char const*>(bytes.data()), size});
}

// All slots, also those after childCount: "3 4 and 8 empty slots" would not say which.
std::string s_slots(DTNode const& node) {
    std::string text;
    for (std::size_t slot = 0; slot < node.children.size(); ++slot) {
        text += (slot == 0 ? "" : " ") + std::to_string(+node.children[slot]);
    }
    return text;
}

std::string s_counts(DTNode const& node) {
    return std::to_string(+node.value1) + ' ' + std::to_string(+node.value2) + ' ' +
           std::to_string(+node.value3);
}

} // namespace

Fields fieldsOf(DTNode const& node) {
    return {{"the test", conditionText(node.attribute, node.test, node.testValue)},
            {"leaf", std::to_string(+node.isLeaf)},
            {"the number of children", std::to_string(+node.childCount)},
            {"the list of children", s_slots(node)},
            {"counts", s_counts(node)},
            {"confidence", numberText(node.confidence)},
            {"support", numberText(node.support)},
            {"reserved1", s_hex(node.reserved1)},
            {"reserved2", std::to_string(+node.reserved2)}};
}

Fields fieldsOf(EliteFileHeader const& header) {
    return {{"the select mode", std::to_string(+header.selectMode)},
            {"also-tree", std::to_string(+header.alsoWalkTree)},
            {"reserved1", std::to_string(+header.reserved1)},
            {"reserved2", std::to_string(+header.reserved2)},
            {"reserved3", s_hex(header.reserved3)}};
}

Fields fieldsOf(EliteRecord const& rule) {
    return {{"the type", std::to_string(+rule.type)},
            {"the code", std::to_string(+rule.code)},
            {"the weight", numberText(rule.weight)},
            {"support", numberText(rule.support)},
            {"level", std::to_string(+rule.level)},
            {"flag", std::to_string(+rule.flag)},
            {"reserved", std::to_string(+rule.reserved)},
            {"the number of conditions", std::to_string(+rule.conditionCount)}};
}

std::vector<std::string> conditionsOf(EliteNodes const& rule) {
    std::vector<std::string> texts;
    for (auto const& condition : rule.conditions) {
        texts.push_back(conditionText(condition.attribute, condition.test, condition.value));
    }
    return texts;
}

bool operator==(Field const& a, Field const& b) {
    return a.m_text == b.m_text && std::strcmp(a.m_name, b.m_name) == 0;
}

} // namespace Quorvane::Rules
