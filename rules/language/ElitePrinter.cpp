// SPDX-License-Identifier: Apache-2.0
#include "rules/format/RuleTests.h"
#include "rules/language/Literals.h"
#include "rules/language/Printers.h"
#include "rules/language/RuleText.h"

#include <optional>

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

// Of rules that can have a name, what it belongs to.
std::optional<RuleKey> s_key(EliteRecord const& rule) {
    switch (rule.type) {
    case EliteType::adjusting:
        return RuleKey{RuleKey::Kind::adjust, rule.code};
    case EliteType::deciding:
        return RuleKey{RuleKey::Kind::decide, rule.code};
    default:
        return std::nullopt;
    }
}

std::string s_conditions(EliteNodes const& rule) {
    std::string text;
    for (auto const& condition : rule.conditions) {
        text += text.empty() ? "when " : " and ";
        text += conditionText(condition);
    }
    return text.empty() ? "always" : text;
}

// The conditions follow the name on a line of their own.
std::string s_nameAndConditions(EliteNodes const& rule, NamePrinter& names) {
    auto const key = s_key(rule);
    auto const name = key ? names.lines(*key, indentWidth) : "";
    auto const start = name.empty() ? " " : '\n' + std::string(indentWidth, ' ');
    return name + start + s_conditions(rule) + '\n';
}

std::string s_ruleText(EliteNodes const& rule, NamePrinter& names) {
    auto const key = s_key(rule);
    auto text = s_kindText(rule) + numberText(rule.weight) + " code " +
                (key ? codeText(key->m_kind, rule.code) : std::to_string(rule.code));
    if (!sameBits(rule.support, rule.type == EliteType::deciding ? 100.0 : 0.0)) {
        text += " support " + numberText(rule.support);
    }
    printUnless(text, "level", +rule.level, 0);
    printUnless(text, "flag", +rule.flag, 0);
    printUnless(text, "reserved", +rule.reserved, 0);
    printUnless(text, "conditions", +rule.conditionCount,
                static_cast<std::int32_t>(rule.conditions.size()));
    return text + s_nameAndConditions(rule, names);
}

} // namespace

std::string eliteText(EliteFile const& elite, NamePrinter& names) {
    std::string text;
    if (elite.m_header) {
        text += s_headerLine(*elite.m_header, elite.m_rules.size());
    }
    for (auto const& rule : elite.m_rules) {
        text += s_ruleText(rule, names);
    }
    if (!elite.m_header || !elite.m_tail.empty()) {
        text += hexLines("elite-tail", elite.m_tail);
    }
    return text;
}

} // namespace Quorvane::Rules
