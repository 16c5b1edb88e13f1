// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/VectorJudge.h"

#include "apps/workshop/TemporaryRules.h"
#include "include2/DeepHeaderException.h"
#include "platform/File.h"
#include "rules/model/RuleError.h"

#include <algorithm>

namespace Quorvane::Workshop {

namespace {

using EliteHits = DeepHeaderAdapter::EliteHits;
using MsgProperties = DeepHeaderAdapter::MsgProperties;

// The engine reads below the file layer's root, which is the process's: moved, and moved back.
class MovedRoot {
  public:
    explicit MovedRoot(std::string const& folder)
        : m_before(File::root().empty() ? "/" : File::root()) {
        File::setRoot(folder);
    }
    MovedRoot(MovedRoot const&) = delete;
    MovedRoot& operator=(MovedRoot const&) = delete;
    ~MovedRoot() {
        try {
            File::setRoot(m_before);
        } catch (Exception const&) {
            // It was a temporary folder too and is gone: nobody reads there any more.
        }
    }

  private:
    std::string m_before;
};

RefDeepHeaderAdapter s_load(Rules::RuleSet const& rules) {
    TemporaryRules const folder(rules);
    MovedRoot const root(folder.root());
    try {
        return RefDeepHeaderAdapter(new DeepHeaderAdapter);
    } catch (Exception const& error) {
        throw Rules::RuleError(Rules::RuleError::Kind::badRules,
                               "no host could load these rules: " + error.asString());
    }
}

bool s_eliteDecides(EliteHits const& hits, DeepHeaderSettings const& settings) {
    return hits.support >= settings.minSupport &&
           hits.confidence + hits.adjust >= settings.spamThreshold;
}

void s_takeElite(Rules::JudgedVector& judged, EliteHits const& hits) {
    judged.m_verdict = Rules::Verdict::spam;
    judged.m_decider = {true, hits.code};
    judged.m_confidence = hits.confidence;
    judged.m_support = hits.support;
}

Rules::Verdict s_treeVerdict(DTNode const& node, double adjust,
                             DeepHeaderSettings const& settings) {
    if (!(node.support >= settings.minSupport)) {
        return Rules::Verdict::none;
    }
    if (adjust + node.confidence >= settings.spamThreshold) {
        return Rules::Verdict::spam;
    }
    return 1.0 - node.confidence >= settings.hamThreshold ? Rules::Verdict::ham
                                                          : Rules::Verdict::none;
}

void s_takeNode(Rules::JudgedVector& judged, DTNode const& node, int number,
                DeepHeaderSettings const& settings) {
    judged.m_verdict = s_treeVerdict(node, judged.m_adjust, settings);
    judged.m_decider = {false, number};
    judged.m_confidence = node.confidence;
    judged.m_support = node.support;
}

} // namespace

VectorJudge::VectorJudge(Rules::RuleSet const& rules, DeepHeaderSettings const& settings)
    : m_settings(settings), m_engine(s_load(rules)) {}

Rules::JudgedVector VectorJudge::judge(Rules::AttributeVector const& vector) const {
    RefDeepHeaderAdapter engine(m_engine);
    MsgProperties props;
    props.attributes = vector;
    EliteHits hits;
    if (engine->hasEliteNodes()) {
        engine->checkElite(hits, props, m_settings);
    }
    Rules::JudgedVector judged;
    judged.m_adjust = hits.adjust;
    bool const mayDecide = hits.code != 0 && hits.support >= m_settings.minSupport;
    if (mayDecide) {
        judged.m_score = hits.confidence + hits.adjust;
    }
    bool const eliteDecides = s_eliteDecides(hits, m_settings);
    if (eliteDecides) {
        s_takeElite(judged, hits);
    }
    int const number =
        engine->consultsTree(m_settings) ? engine->travelDT(m_settings, treeRoot, props) : -1;
    if (number > treeRoot) {
        auto const& node = engine->treeNodes().at(static_cast<std::size_t>(number));
        judged.m_score = std::max(judged.m_score, node.confidence + hits.adjust);
        if (!eliteDecides) {
            s_takeNode(judged, node, number, m_settings);
        }
    }
    return judged;
}

} // namespace Quorvane::Workshop
