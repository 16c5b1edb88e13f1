// SPDX-License-Identifier: Apache-2.0
#include "rules/language/EliteBuilder.h"

#include <algorithm>

namespace Quorvane::Rules {

namespace {

// A rule written by hand has no training counts; it counts as always supported.
constexpr double decidingSupport = 100.0;

class EliteBuilder {
  public:
    explicit EliteBuilder(CompiledRules& compiled) : m_compiled(compiled) {}

    void build(RulesSyntax const& rules) {
        if (rules.m_eliteHeader) {
            m_elite.m_header = header(*rules.m_eliteHeader, rules.m_eliteRules.size());
        } else if (!rules.m_eliteRules.empty()) {
            error(
                rules.m_eliteRules.front().m_position,
                "elite rules need a line \"elite first also-tree\" before them, which says how one "
                "of several is chosen and whether the tree is consulted too");
        }
        for (auto const& rule : rules.m_eliteRules) {
            addRule(rule);
        }
        rejectTooMany(rules);
        setTail(rules);
        if (rules.m_eliteHeader || rules.m_eliteTail) {
            m_compiled.m_set.m_elite = std::move(m_elite);
        }
    }

  private:
    void error(Position position, std::string const& text) {
        m_compiled.m_errors.push_back({position, text});
    }

    EliteFileHeader header(EliteHeaderSyntax const& syntax, std::size_t ruleCount) {
        m_compiled.m_places.m_eliteHeader = syntax.m_position;
        EliteFileHeader header{};
        header.reserved1 = syntax.m_reserved1.value_or(0);
        header.nodeCount = syntax.m_count.value_or(static_cast<std::int32_t>(ruleCount));
        header.reserved2 = syntax.m_reserved2.value_or(0);
        header.selectMode = syntax.m_selectMode.value_or(SelectMode::first);
        header.alsoWalkTree = syntax.m_alsoWalkTree.value_or(0);
        if (syntax.m_reserved3) {
            setReserved3(syntax, header);
        }
        return header;
    }

    void setReserved3(EliteHeaderSyntax const& syntax, EliteFileHeader& header) {
        if (syntax.m_reserved3->size() != header.reserved3.size()) {
            error(syntax.m_position, "\"reserved3\" of the elite line holds 12 bytes");
            return;
        }
        std::copy(syntax.m_reserved3->begin(), syntax.m_reserved3->end(), header.reserved3.begin());
    }

    void addRule(EliteRuleSyntax const& syntax) {
        auto const isDeciding = syntax.m_type == EliteType::deciding;
        if (!syntax.m_code && (isDeciding || syntax.m_type == EliteType::adjusting)) {
            error(syntax.m_position,
                  isDeciding
                      ? "this rule has no code; add \"code\" and the number that answers show "
                        "when it decides"
                      : "this rule has no code; add \"code\" and the letter that answers show "
                        "when it fires, as in code 'd'");
        }
        EliteNodes rule{};
        rule.code = syntax.m_code.value_or(0);
        rule.weight = syntax.m_weight;
        rule.support = syntax.m_support.value_or(isDeciding ? decidingSupport : 0.0);
        rule.flag = syntax.m_flag.value_or(0);
        rule.type = syntax.m_type;
        rule.level = syntax.m_level.value_or(0);
        rule.reserved = syntax.m_reserved.value_or(0);
        addConditions(syntax, rule);
        m_elite.m_rules.push_back(std::move(rule));
    }

    void addConditions(EliteRuleSyntax const& syntax, EliteNodes& rule) {
        std::vector<Position> places;
        for (auto const& condition : syntax.m_conditions) {
            rule.conditions.push_back(condition.m_test);
            places.push_back(condition.m_position);
        }
        if (places.size() > maxEliteConditions) {
            error(places[maxEliteConditions], "a rule has at most 100 conditions; a file with more "
                                              "would be cut off here by every engine");
        }
        auto const count = static_cast<std::int32_t>(places.size());
        rule.conditionCount = syntax.m_conditionCount.value_or(count);
        if (rule.conditionCount != count && (rule.conditionCount >= 0 || count > 0)) {
            error(syntax.m_position,
                  "\"conditions\" must be the number of conditions, or below zero "
                  "for a rule with none");
        }
        m_compiled.m_places.m_rules.push_back(syntax.m_position);
        m_compiled.m_places.m_conditions.push_back(std::move(places));
    }

    void rejectTooMany(RulesSyntax const& rules) {
        if (rules.m_eliteRules.size() > maxEliteNodes) {
            error(rules.m_eliteRules[maxEliteNodes].m_position,
                  "engines read " + std::to_string(maxEliteNodes) + " elite rules and no more");
        }
    }

    void setTail(RulesSyntax const& rules) {
        if (!rules.m_eliteTail) {
            return;
        }
        m_elite.m_tail = rules.m_eliteTail->m_value;
        if (!rules.m_eliteHeader && m_elite.m_tail.size() >= sizeof(EliteFileHeader)) {
            error(rules.m_eliteTail->m_position, "32 bytes or more need an elite line before them");
        }
    }

    CompiledRules& m_compiled;
    EliteFile m_elite;
};

} // namespace

void buildElite(RulesSyntax const& rules, CompiledRules& compiled) {
    EliteBuilder(compiled).build(rules);
}

} // namespace Quorvane::Rules
