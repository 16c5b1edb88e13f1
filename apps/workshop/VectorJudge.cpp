// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/VectorJudge.h"

#include "apps/host/RuleLoader.h"

namespace Quorvane::Workshop {

VectorJudge::VectorJudge(Rules::RuleSet const& rules, DeepHeaderSettings const& settings)
    : m_engine(engineOf(rules)), m_settings(settings) {}

Rules::JudgedVector VectorJudge::operator()(Rules::AttributeVector const& vector) const {
    auto const verdict = m_engine.judge(vector, m_settings, RecordDepth::result).verdict;
    Rules::JudgedVector judged;
    if (verdict.isSpam || verdict.isHam) {
        judged.m_verdict = verdict.isSpam ? Rules::Verdict::spam : Rules::Verdict::ham;
    }
    judged.m_decider = {verdict.decision == Decision::elite, verdict.node};
    judged.m_confidence = verdict.confidence;
    judged.m_support = verdict.support;
    judged.m_adjust = verdict.adjust;
    judged.m_score = verdict.spamScore;
    return judged;
}

} // namespace Quorvane::Workshop
