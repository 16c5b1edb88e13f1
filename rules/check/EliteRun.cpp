// SPDX-License-Identifier: Apache-2.0
#include "rules/check/EliteRun.h"

#include "rules/format/RuleTests.h"

#include <algorithm>
#include <utility>

namespace Quorvane::Rules {

namespace {

bool s_canFire(EliteNodes const& rule, DeepHeaderSettings const& settings) {
    return isWithinLevel(rule, settings.maxEliteLevel) && canFire(rule, settings.minSupport) &&
           std::all_of(rule.conditions.begin(), rule.conditions.end(), isRealCondition);
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
    return isTreeAsked(m_hasRules, m_alsoTree, settings.spamThreshold);
}

std::vector<std::size_t> keptRules(EliteFile const& file) {
    auto const announced =
        file.m_header ? std::clamp(+file.m_header->nodeCount, 0, maxEliteNodes) : 0;
    auto const read = std::min(file.m_rules.size(), static_cast<std::size_t>(announced));
    std::vector<std::size_t> places;
    for (std::size_t place = 0; place < read; ++place) {
        if (isKeptRule(file.m_rules[place])) {
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
    run.m_alsoTree = letsTreeBeAsked(*set.m_elite->m_header);
    run.m_selectMode = set.m_elite->m_header->selectMode;
    auto const places = keptRules(*set.m_elite);
    run.m_hasRules = !places.empty();
    for (auto const place : places) {
        auto const& rule = set.m_elite->m_rules[place];
        if (s_canFire(rule, settings)) {
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
