// SPDX-License-Identifier: Apache-2.0
//
// The elite rules: loading qv2.dt and running the list over one attribute vector.
#include "adapter/DeepHeaderAdapter.h"
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

void s_choose(EliteNodes const& node, EliteHits& hits) {
    hits.confidence = node.weight;
    hits.code = node.code;
    hits.support = node.support;
}

void s_adjust(EliteNodes const& node, EliteHits& hits) {
    hits.adjust += node.weight;
    hits.reasons += static_cast<char>(reasonByte(node));
}

} // namespace

int DeepHeaderAdapter::loadEliteNodes() {
    File::Path const path(ruleDirectory, eliteFileName);
    File::basic_ifstream<char> file(path);
    if (!file.is_open() || !s_read(file, m_eliteHeader)) {
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
    for (auto const& node : m_eliteNodes) {
        if (!isWithinLevel(node, settings.maxEliteLevel) || !matches(node, props.attributes)) {
            continue;
        }
        if (node.type == EliteType::adjusting) {
            s_adjust(node, hits);
        } else if (canFire(node, settings.minSupport)) {
            if (s_isPreferred(node, hits, m_eliteHeader.selectMode)) {
                s_choose(node, hits);
            }
            if (endsRun(m_eliteHeader.selectMode)) {
                return 0;
            }
        }
    }
    return 0;
}

} // namespace Quorvane
