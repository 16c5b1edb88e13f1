// SPDX-License-Identifier: Apache-2.0
//
// Last stage of a scan: a matching deciding elite rule decides; otherwise, if the settings and the
// elite file allow it, the tree does.
#include "adapter/DeepHeaderAdapter.h"
#include "rules/format/RuleTests.h"
#include "scanner/records/DeepHeaderAnswerImpl.h"

#include <algorithm>
#include <limits>
#include <utility>

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

bool s_decides(EliteHits const& hits, DeepHeaderSettings const& settings) {
    return isSupported(hits.support, settings.minSupport) &&
           hits.confidence + hits.adjust >= settings.spamThreshold;
}

} // namespace

bool DeepHeaderAdapter::consultsTree(DeepHeaderSettings const& settings) const {
    return isTreeAsked(hasEliteNodes(), letsTreeBeAsked(m_eliteHeader), settings.spamThreshold);
}

TreeUse DeepHeaderAdapter::treeUse(EliteHits const& hits,
                                   DeepHeaderSettings const& settings) const {
    if (s_decides(hits, settings)) {
        return TreeUse::eliteDecided;
    }
    if (consultsTree(settings)) {
        return TreeUse::walked;
    }
    return isTreeOn(settings.spamThreshold) ? TreeUse::leftOut : TreeUse::switchedOff;
}

void DeepHeaderAdapter::getResults(DeepHeaderAnswerImpl& answer, DeepHeaderQuery& query,
                                   MsgProperties& props) {
    auto const& settings = query.settings();
    auto& hits = props.elite;
    if (hasEliteNodes()) {
        checkElite(hits, props, settings);
    }
    props.treeUse = treeUse(hits, settings);
    props.decision = Decision::none;
    if (props.treeUse == TreeUse::eliteDecided) {
        props.decision = Decision::elite;
        s_writeEliteVerdict(answer, hits);
        answer.m_ips = s_ips(props);
        return;
    }
    if (props.treeUse != TreeUse::walked) {
        return;
    }
    props.treeResult = travelDT(settings, treeRoot, props);
    if (!canDecide(props.treeResult)) {
        return;
    }
    props.decision = Decision::tree;
    auto const& node = m_dtNodes[static_cast<std::size_t>(props.treeResult)];
    s_writeTreeNode(answer, props.treeResult, node);
    s_writeAdjustment(answer, hits);
    answer.m_ips = s_ips(props);
    s_classify(answer, node, hits, settings);
}

// What a walk to the leaf would say at any threshold that lets the tree be asked at all.
double DeepHeaderAdapter::spamScore(DeepHeaderSettings const& settings, MsgProperties& props) {
    double score = -std::numeric_limits<double>::infinity();
    auto const& hits = props.elite;
    if (hits.code != noDecisionCode && isSupported(hits.support, settings.minSupport)) {
        score = hits.confidence + hits.adjust;
    }
    int number = props.treeResult;
    if (props.treeUse == TreeUse::eliteDecided && consultsTree(settings)) {
        auto* const recorder = std::exchange(props.recorder, nullptr); // no part of the scan
        number = travelDT(settings, treeRoot, props);
        props.recorder = recorder;
    }
    if (canDecide(number)) {
        auto const& node = m_dtNodes[static_cast<std::size_t>(number)];
        score = std::max(score, node.confidence + hits.adjust);
    }
    return score;
}

} // namespace Quorvane
