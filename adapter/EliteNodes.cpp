// SPDX-License-Identifier: Apache-2.0
//
// The elite rules: loading qv2.dt and running the list over one attribute vector.
#include "adapter/DeepHeaderAdapter.h"
#include "adapter/ScanRecorder.h"
#include "platform/File.h"
#include "rules/format/RuleTests.h"

namespace Quorvane {

namespace {

using EliteHits = DeepHeaderAdapter::EliteHits;

template<typename Record>
bool s_read(std::istream& file, Record& record) {
    return static_cast<bool>(file.read(reinterpret_cast<char*>(&record), sizeof record));
}

// True when a whole node record with all its conditions was read.
bool s_readNode(std::istream& file, EliteNodes& node) {
    if (!s_read(file, static_cast<EliteRecord&>(node)) ||
        node.conditionCount > maxEliteConditions) {
        return false;
    }
    for (std::int32_t i = 0; i < node.conditionCount; ++i) {
        EliteCondition condition{};
        if (!s_read(file, condition)) {
            return false;
        }
        node.conditions.push_back(condition);
    }
    return true;
}

// Whether a matching deciding node replaces what was chosen before.
bool s_isPreferred(EliteNodes const& node, EliteHits const& hits, std::int32_t selectMode) {
    return hits.code == noDecisionCode || replaces(selectMode, node.weight, hits.confidence);
}

// A node that matched does what its type says.
RuleOutcome s_fire(EliteNodes const& node, EliteHits& hits, DeepHeaderSettings const& settings,
                   std::int32_t selectMode) {
    if (node.type == EliteType::adjusting) {
        hits.adjust += node.weight;
        hits.reasons += static_cast<char>(reasonByte(node.code));
        return RuleOutcome::adjusted;
    }
    if (!canFire(node, settings.minSupport)) {
        return node.type == EliteType::deciding ? RuleOutcome::support : RuleOutcome::unknownType;
    }
    if (!s_isPreferred(node, hits, selectMode)) {
        return RuleOutcome::passedOver;
    }
    hits.confidence = node.weight;
    hits.code = node.code;
    hits.support = node.support;
    return RuleOutcome::chosen;
}

bool s_isDecidingMatch(RuleOutcome outcome) {
    return outcome == RuleOutcome::chosen || outcome == RuleOutcome::passedOver;
}

} // namespace

int DeepHeaderAdapter::loadEliteNodes() {
    File::Path const path(ruleDirectory, eliteFileName);
    File::basic_ifstream<char> file(path);
    return file.is_open() ? loadEliteNodes(file) : 1;
}

int DeepHeaderAdapter::loadEliteNodes(std::istream& file) {
    if (!s_read(file, m_eliteHeader)) {
        m_eliteHeader.nodeCount = 0;
        return 1;
    }
    int result = 0;
    for (int read = 0; read < m_eliteHeader.nodeCount && read < maxEliteNodes; ++read) {
        EliteNodes node{};
        if (!s_readNode(file, node)) {
            result = 1;
            break;
        }
        if (isKeptRule(node)) {
            m_eliteNodes.push_back(std::move(node));
        }
    }
    m_eliteHeader.nodeCount = static_cast<std::int32_t>(m_eliteNodes.size());
    return result;
}

bool DeepHeaderAdapter::hasEliteNodes() const {
    return m_eliteHeader.nodeCount > 0;
}

int DeepHeaderAdapter::checkElite(EliteHits& hits, MsgProperties& props,
                                  DeepHeaderSettings const& settings) {
    auto* const recorder = props.recorder;
    if (recorder != nullptr) {
        recorder->beginRules(m_eliteNodes);
    }
    for (auto const& node : m_eliteNodes) {
        auto outcome = RuleOutcome::level;
        std::size_t failedTest = 0;
        if (isWithinLevel(node, settings.maxEliteLevel)) {
            failedTest = firstFailing(node, props.attributes);
            outcome = failedTest < node.conditions.size()
                          ? RuleOutcome::noMatch
                          : s_fire(node, hits, settings, m_eliteHeader.selectMode);
        }
        if (recorder != nullptr) {
            recorder->endRule(outcome, failedTest);
        }
        if (s_isDecidingMatch(outcome) && endsRun(m_eliteHeader.selectMode)) {
            return 0;
        }
    }
    return 0;
}

} // namespace Quorvane
