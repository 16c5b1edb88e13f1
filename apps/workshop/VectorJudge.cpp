// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/VectorJudge.h"

#include "apps/workshop/RuleEngine.h"
#include "rules/format/RuleTests.h"
#include "scanner/records/RecordAccess.h"

#include <algorithm>

namespace Quorvane::Workshop {

namespace {

using EliteHits = DeepHeaderAdapter::EliteHits;
using MsgProperties = DeepHeaderAdapter::MsgProperties;

DeepHeaderQuery s_query(DeepHeaderSettings const& settings) {
    return {HeaderContainer(), Header(),       settings,       0,
            EmailAddress(),    EmailAddress(), EmailAddress(), RefMessageProperties(true)};
}

EliteHits s_eliteHits(RefDeepHeaderAdapter& engine, MsgProperties& props,
                      DeepHeaderSettings const& settings) {
    EliteHits hits;
    if (engine->hasEliteNodes()) {
        engine->checkElite(hits, props, settings);
    }
    return hits;
}

// The engine's own verdict on the vector in `props`.
Rules::JudgedVector s_verdict(RefDeepHeaderAdapter& engine, DeepHeaderQuery query,
                              MsgProperties& props) {
    DeepHeaderAnswer const answer;
    auto& record = RecordAccess::record(answer);
    engine->getResults(record, query, props);
    Rules::JudgedVector judged;
    if (record.m_isSpam || record.m_isHam) {
        judged.m_verdict = record.m_isSpam ? Rules::Verdict::spam : Rules::Verdict::ham;
    }
    judged.m_decider.m_number = record.m_node;
    judged.m_confidence = record.m_confidenceDegree;
    judged.m_support = record.m_supportDegree;
    return judged;
}

} // namespace

VectorJudge::VectorJudge(Rules::RuleSet const& rules, DeepHeaderSettings const& settings)
    : m_query(s_query(settings)), m_engine(loadEngine(rules)) {}

Rules::JudgedVector VectorJudge::judge(Rules::AttributeVector const& vector) const {
    RefDeepHeaderAdapter engine(m_engine);
    auto const& settings = m_query.settings();
    MsgProperties props;
    props.attributes = vector;
    auto const hits = s_eliteHits(engine, props, settings);
    auto judged = s_verdict(engine, m_query, props);
    judged.m_decider.m_isElite = DeepHeaderAdapter::doesEliteDecide(hits, settings);
    judged.m_adjust = hits.adjust;
    if (hits.code != noDecisionCode && isSupported(hits.support, settings.minSupport)) {
        judged.m_score = hits.confidence + hits.adjust;
    }
    int const number =
        engine->consultsTree(settings) ? engine->travelDT(settings, treeRoot, props) : -1;
    if (canDecide(number)) {
        auto const& node = engine->treeNodes().at(static_cast<std::size_t>(number));
        judged.m_score = std::max(judged.m_score, node.confidence + hits.adjust);
    }
    return judged;
}

} // namespace Quorvane::Workshop
