// SPDX-License-Identifier: Apache-2.0
#include "rules/format/RuleTests.h"
#include "rules/language/Literals.h"
#include "rules/language/Printers.h"
#include "rules/language/RuleText.h"

namespace Quorvane::Rules {

namespace {

std::string s_selectText(std::int32_t mode) {
    return isSelectMode(mode) ? std::string(selectWords.at(static_cast<std::size_t>(mode) - 1))
                              : "select " + std::to_string(mode);
}

std::string s_headerLine(EliteFileHeader const& header, std::size_t ruleCount) {
    auto text = "elite " + s_selectText(header.selectMode);
    if (letsTreeBeAsked(header)) {
        text += " also-tree";
    } else {
        printUnless(text, "also-tree", +header.alsoWalkTree, 0);
    }
    printUnless(text, "count", +header.nodeCount, static_cast<std::int32_t>(ruleCount));
    printUnless(text, "reserved1", +header.reserved1, 0);
    printUnless(text, "reserved2", +header.reserved2, 0);
    printUnlessZero(text, "reserved3", header.reserved3);
    return text + '\n';
}

std::string s_kindText(EliteRecord const& rule) {
    switch (rule.type) {
    case EliteType::adjusting:
        return "adjust ";
    case EliteType::deciding:
        return "decide ";
    default:
        return "type " + std::to_string(rule.type) + ' ';
    }
}

std::string s_codeText(EliteRecord const& rule) {
    auto const isLetter = rule.code > ' ' && rule.code <= '~';
    if (rule.type == EliteType::adjusting && isLetter) {
        return std::string(" code '") + static_cast<char>(rule.code) + '\'';
    }
    return " code " + std::to_string(rule.code);
}

std::string s_conditions(EliteNodes const& rule) {
    std::string text;
    for (auto const& condition : rule.conditions) {
        text += text.empty() ? " when " : " and ";
        text += conditionText(condition);
    }
    return text.empty() ? " always" : text;
}

std::string s_ruleLine(EliteNodes const& rule) {
    auto text = s_kindText(rule) + numberText(rule.weight) + s_codeText(rule);
    if (!sameBits(rule.support, rule.type == EliteType::deciding ? 100.0 : 0.0)) {
        text += " support " + numberText(rule.support);
    }
    printUnless(text, "level", +rule.level, 0);
    printUnless(text, "flag", +rule.flag, 0);
    printUnless(text, "reserved", +rule.reserved, 0);
    printUnless(text, "conditions", +rule.conditionCount,
                static_cast<std::int32_t>(rule.conditions.size()));
    return text + s_conditions(rule) + '\n';
}

} // namespace

std::string eliteText(EliteFile const& elite) {
    std::string text;
    if (elite.m_header) {
        text += s_headerLine(*elite.m_header, elite.m_rules.size());
    }
    for (auto const& rule : elite.m_rules) {
        text += s_ruleLine(rule);
    }
    if (!elite.m_header || !elite.m_tail.empty()) {
        text += hexLines("elite-tail", elite.m_tail);
    }
    return text;
}

} // namespace Quorvane::Rules
