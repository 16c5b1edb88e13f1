// SPDX-License-Identifier: Apache-2.0
//
// Last stage of a scan: a matching deciding elite rule decides; otherwise, where settings and elite
// file allow it, the tree does.
#include "adapter/DeepHeaderAdapter.h"
#include "rules/format/RuleTests.h"
#include "scanner/records/DeepHeaderAnswerImpl.h"

namespace Quorvane {

namespace {

using EliteHits = DeepHeaderAdapter::EliteHits;

std::string s_ips(DeepHeaderAdapter::MsgProperties const& props) {
    auto ips = props.receivers[0].ip;
    if (!props.receivers[1].ip.empty()) {
        ips += ',' + props.receivers[1].ip;
    }
    return ips;
}

void s_writeAdjustment(DeepHeaderAnswerImpl& answer, EliteHits const& hits) {
    answer.m_adjust = hits.adjust;
    answer.m_adjustReason = hits.reasons;
}

void s_writeEliteVerdict(DeepHeaderAnswerImpl& answer, EliteHits const& hits) {
    answer.m_node = hits.code;
    answer.m_confidenceDegree = hits.confidence;
    answer.m_supportDegree = hits.support;
    s_writeAdjustment(answer, hits);
    answer.m_isSpam = true;
}

void s_writeTreeNode(DeepHeaderAnswerImpl& answer, int number, DTNode const& node) {
    answer.m_node = number;
    answer.m_nodeValue1 = node.value1;
    answer.m_nodeValue2 = node.value2;
    answer.m_nodeValue3 = node.value3;
    answer.m_nodeFlag = node.isLeaf;
    answer.m_confidenceDegree = node.confidence;
    answer.m_supportDegree = node.support;
}

// Leaves both flags alone where the node is not sure enough of either.
void s_classify(DeepHeaderAnswerImpl& answer, DTNode const& node, EliteHits const& hits,
                DeepHeaderSettings const& settings) {
    if (!isSupported(node.support, settings.minSupport)) {
        return;
    }
    if (hits.adjust + node.confidence >= settings.spamThreshold) {
        answer.m_isSpam = true;
    } else if (1.0 - node.confidence >= settings.hamThreshold) {
        answer.m_isHam = true;
    }
}

} // namespace

bool DeepHeaderAdapter::doesEliteDecide(EliteHits const& hits, DeepHeaderSettings const& settings) {
    return isSupported(hits.support, settings.minSupport) &&
           hits.confidence + hits.adjust >= settings.spamThreshold;
}

bool DeepHeaderAdapter::consultsTree(DeepHeaderSettings const& settings) const {
    return isTreeAsked(hasEliteNodes(), letsTreeBeAsked(m_eliteHeader), settings.spamThreshold);
}

void DeepHeaderAdapter::getResults(DeepHeaderAnswerImpl& answer, DeepHeaderQuery& query,
                                   MsgProperties& props) {
    auto const& settings = query.settings();
    EliteHits hits;
    if (hasEliteNodes()) {
        checkElite(hits, props, settings);
    }
    if (doesEliteDecide(hits, settings)) {
        s_writeEliteVerdict(answer, hits);
        answer.m_ips = s_ips(props);
        return;
    }
    if (!consultsTree(settings)) {
        return;
    }
    int const number = travelDT(settings, treeRoot, props);
    if (!canDecide(number)) {
        return;
    }
    auto const& node = m_dtNodes[static_cast<std::size_t>(number)];
    s_writeTreeNode(answer, number, node);
    s_writeAdjustment(answer, hits);
    answer.m_ips = s_ips(props);
    s_classify(answer, node, hits, settings);
}

} // namespace Quorvane
