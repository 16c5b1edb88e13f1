// SPDX-License-Identifier: Apache-2.0
#include "rules/language/Builders.h"

#include <utility>

namespace Quorvane::Rules {

namespace {

void s_requireCode(EliteRuleSyntax const& syntax, std::vector<Diagnostic>& errors) {
    auto const type = +syntax.m_rule.type;
    if (syntax.m_given.contains("code")) {
        return;
    }
    if (type == EliteType::deciding) {
        errors.push_back({syntax.m_position, "this rule has no code; add \"code\" and the number "
                                             "that answers show when it decides"});
    } else if (type == EliteType::adjusting) {
        errors.push_back({syntax.m_position, "this rule has no code; add \"code\" and the letter "
                                             "that answers show when it fires, as in code 'd'"});
    }
}

void s_setConditionCount(EliteRuleSyntax const& syntax, EliteRecord& rule,
                         std::vector<Diagnostic>& errors) {
    auto const& places = syntax.m_conditionPlaces;
    if (places.size() > maxEliteConditions) {
        errors.push_back({places[maxEliteConditions],
                          "a rule has at most 100 conditions; a file with more "
                          "would be cut off here by every engine"});
    }
    auto const count = static_cast<std::int32_t>(places.size());
    if (!syntax.m_given.contains("conditions")) {
        rule.conditionCount = count;
    } else if (rule.conditionCount != count && (rule.conditionCount >= 0 || count > 0)) {
        errors.push_back({syntax.m_position, "\"conditions\" must be the number of conditions, or "
                                             "below zero for a rule with none"});
    }
}

EliteFileHeader s_header(EliteHeaderSyntax const& syntax, std::size_t ruleCount) {
    auto header = syntax.m_header;
    if (!syntax.m_given.contains("count")) {
        header.nodeCount = static_cast<std::int32_t>(ruleCount);
    }
    return header;
}

void s_addName(EliteRuleSyntax const& syntax, CompiledRules& compiled) {
    auto const& [name, sentence] = syntax.m_naming;
    auto const code = +syntax.m_rule.code;
    switch (syntax.m_rule.type) {
    case EliteType::deciding:
        return buildName(syntax.m_naming, {RuleKey::Kind::decide, code}, compiled);
    case EliteType::adjusting:
        return buildName(syntax.m_naming, {RuleKey::Kind::adjust, code}, compiled);
    default:
        break;
    }
    for (auto const& text : {name, sentence}) {
        if (text) {
            compiled.m_errors.push_back({text->m_position, "a rule that neither decides nor "
                                                           "adjusts has no name; drop it"});
        }
    }
}

void s_addTail(RulesSyntax const& rules, EliteFile& elite, std::vector<Diagnostic>& errors) {
    if (!rules.m_eliteTail) {
        return;
    }
    elite.m_tail = rules.m_eliteTail->m_value;
    if (!rules.m_eliteHeader && elite.m_tail.size() >= sizeof(EliteFileHeader)) {
        errors.push_back(
            {rules.m_eliteTail->m_position, "32 bytes or more need an elite line before them"});
    }
}

} // namespace

void buildElite(RulesSyntax const& rules, CompiledRules& compiled) {
    auto& [set, names, places, errors] = compiled;
    EliteFile elite;
    if (rules.m_eliteHeader) {
        places.m_eliteHeader = rules.m_eliteHeader->m_position;
        elite.m_header = s_header(*rules.m_eliteHeader, rules.m_eliteRules.size());
    } else if (!rules.m_eliteRules.empty()) {
        errors.push_back(
            {rules.m_eliteRules.front().m_position,
             "elite rules need a line \"elite first also-tree\" before them, which says how one "
             "of several is chosen and whether the tree is consulted too"});
    }
    for (auto const& syntax : rules.m_eliteRules) {
        auto rule = syntax.m_rule;
        s_requireCode(syntax, errors);
        s_setConditionCount(syntax, rule, errors);
        s_addName(syntax, compiled);
        elite.m_rules.push_back(std::move(rule));
        places.m_rules.push_back(syntax.m_position);
        places.m_conditions.push_back(syntax.m_conditionPlaces);
    }
    if (rules.m_eliteRules.size() > maxEliteNodes) {
        errors.push_back(
            {rules.m_eliteRules[maxEliteNodes].m_position,
             "engines read " + std::to_string(maxEliteNodes) + " elite rules and no more"});
    }
    s_addTail(rules, elite, errors);
    if (rules.m_eliteHeader || rules.m_eliteTail) {
        set.m_elite = std::move(elite);
    }
}

} // namespace Quorvane::Rules
