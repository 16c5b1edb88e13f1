// SPDX-License-Identifier: Apache-2.0
//
// The elite rules: loading qv2.dt and running the list over one attribute vector.
#include "adapter/DeepHeaderAdapter.h"
#include "platform/File.h"

namespace Quorvane {

namespace {

using EliteHits = DeepHeaderAdapter::EliteHits;
using AttributeVector = std::array<std::int32_t, attributeCount>;

template<typename Record>
bool s_read(std::istream& file, Record& record) {
    return static_cast<bool>(file.read(reinterpret_cast<char*>(&record), sizeof record));
}

// True when a whole node record with all its conditions was read. A condition that is no test
// makes `isUsable` false; the others are read all the same, so that the file stays in step.
bool s_readNode(std::istream& file, EliteNodes& node, bool& isUsable) {
    if (!s_read(file, static_cast<EliteRecord&>(node)) ||
        node.conditionCount > maxEliteConditions) {
        return false;
    }
    isUsable = node.flag <= maxEliteFlag;
    for (std::int32_t i = 0; i < node.conditionCount; ++i) {
        EliteCondition condition{};
        if (!s_read(file, condition)) {
            return false;
        }
        isUsable = isUsable && condition.attribute <= maxAttribute && condition.test <= maxTest;
        node.conditions.push_back(condition);
    }
    return true;
}

bool s_holds(EliteCondition const& condition, AttributeVector const& attributes) {
    if (condition.attribute < 0 || condition.attribute > maxAttribute) {
        return false;
    }
    auto const value = attributes[static_cast<std::size_t>(condition.attribute)];
    switch (condition.test) {
    case 0:
        return value == condition.value;
    case 1:
        return value != condition.value;
    default:
        return false;
    }
}

bool s_matches(EliteNodes const& node, AttributeVector const& attributes) {
    for (auto const& condition : node.conditions) {
        if (!s_holds(condition, attributes)) {
            return false;
        }
    }
    return true;
}

// Whether a matching deciding node replaces what was chosen before.
bool s_isPreferred(EliteNodes const& node, EliteHits const& hits, std::int32_t selectMode) {
    if (hits.code == 0) {
        return true;
    }
    switch (selectMode) {
    case SelectMode::last:
        return true;
    case SelectMode::highest:
        return node.weight > hits.confidence;
    case SelectMode::lowest:
        return node.weight < hits.confidence;
    default:
        return false;
    }
}

void s_choose(EliteNodes const& node, EliteHits& hits) {
    hits.confidence = node.weight;
    hits.code = node.code;
    hits.support = node.support;
}

void s_adjust(EliteNodes const& node, EliteHits& hits) {
    hits.adjust += node.weight;
    hits.reasons += static_cast<char>(static_cast<std::uint32_t>(node.code) & 0xffU);
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
        bool isUsable = false;
        if (!s_readNode(file, node, isUsable)) {
            result = 1;
            break;
        }
        if (isUsable) {
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
        if (node.level > settings.maxEliteLevel || !s_matches(node, props.attributes)) {
            continue;
        }
        if (node.type == EliteType::adjusting) {
            s_adjust(node, hits);
        } else if (node.type == EliteType::deciding && node.support >= settings.minSupport) {
            if (s_isPreferred(node, hits, m_eliteHeader.selectMode)) {
                s_choose(node, hits);
            }
            if (m_eliteHeader.selectMode == SelectMode::first) {
                return 0;
            }
        }
    }
    return 0;
}

} // namespace Quorvane
