// SPDX-License-Identifier: Apache-2.0
#include "rules/check/EliteRun.h"

#include <algorithm>
#include <utility>

namespace Quorvane::Rules {

namespace {

// What the loader keeps of the rules that it reads.
bool s_isKept(EliteNodes const& rule) {
    return rule.flag <= maxEliteFlag &&
           std::all_of(rule.conditions.begin(), rule.conditions.end(),
                       [](EliteCondition const& condition) {
                           return condition.attribute <= maxAttribute && condition.test <= maxTest;
                       });
}

bool s_isLetRun(EliteNodes const& rule, DeepHeaderSettings const& settings) {
    if (rule.level > settings.maxEliteLevel) {
        return false;
    }
    return rule.type == EliteType::adjusting ||
           (rule.type == EliteType::deciding && rule.support >= settings.minSupport);
}

// A condition below the known attributes and tests never holds.
bool s_isTest(EliteCondition const& condition) {
    return condition.attribute >= 0 && condition.test >= 0;
}

LiveRule s_liveRule(EliteNodes const& rule, std::int32_t number) {
    LiveRule live;
    live.m_number = number;
    live.m_isDeciding = rule.type == EliteType::deciding;
    live.m_code = rule.code;
    live.m_weight = rule.weight;
    live.m_conditions.assign(rule.conditions.begin(), rule.conditions.end());
    for (auto const& condition : live.m_conditions) {
        live.m_matches.assume(condition);
    }
    return live;
}

} // namespace

bool LiveRule::doesMeet(PossibleValues values) const {
    return std::all_of(m_conditions.begin(), m_conditions.end(),
                       [&values](EliteCondition const& condition) {
                           values.assume(condition);
                           return !values.isNobody();
                       });
}

bool LiveRule::covers(PossibleValues const& values) const {
    return std::all_of(
        m_conditions.begin(), m_conditions.end(),
        [&values](EliteCondition const& condition) { return values.implies(condition); });
}

bool EliteRun::asksTree(DeepHeaderSettings const& settings) const {
    return (!m_hasRules || m_alsoTree) && treeOffThreshold > settings.spamThreshold;
}

std::vector<std::size_t> keptRules(EliteFile const& file) {
    auto const announced =
        file.m_header ? std::clamp(+file.m_header->nodeCount, 0, maxEliteNodes) : 0;
    auto const read = std::min(file.m_rules.size(), static_cast<std::size_t>(announced));
    std::vector<std::size_t> places;
    for (std::size_t place = 0; place < read; ++place) {
        if (s_isKept(file.m_rules[place])) {
            places.push_back(place);
        }
    }
    return places;
}

EliteRun eliteRun(RuleSet const& set, DeepHeaderSettings const& settings) {
    EliteRun run;
    if (!set.m_elite || !set.m_elite->m_header) {
        return run;
    }
    run.m_alsoTree = set.m_elite->m_header->alsoWalkTree == 1;
    run.m_selectMode = set.m_elite->m_header->selectMode;
    auto const places = keptRules(*set.m_elite);
    run.m_hasRules = !places.empty();
    for (auto const place : places) {
        auto const& rule = set.m_elite->m_rules[place];
        if (s_isLetRun(rule, settings) &&
            std::all_of(rule.conditions.begin(), rule.conditions.end(), s_isTest)) {
            auto live = s_liveRule(rule, static_cast<std::int32_t>(place) + 1);
            if (!live.m_matches.isNobody()) {
                run.m_rules.push_back(std::move(live));
            }
        }
    }
    findShadows(run);
    return run;
}

} // namespace Quorvane::Rules
