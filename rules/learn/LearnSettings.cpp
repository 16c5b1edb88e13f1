// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/LearnSettings.h"

#include "rules/vectors/LearnError.h"

#include <string>

namespace Quorvane::Rules {

AttributeSelection defaultAttributes() {
    AttributeSelection selection;
    selection.fill(true);
    for (auto const index : {Attribute::firstHeloResolves, Attribute::firstForged,
                             Attribute::envelopeDomainResolves}) {
        selection.at(index) = false;
    }
    return selection;
}

void selectAttribute(AttributeSelection& selection, std::string_view name, bool use) {
    auto const index = attributeIndex(name);
    if (!index) {
        throw LearnError("there is no attribute called '" + std::string(name) +
                         "'; \"qvrules attributes\" lists the names");
    }
    selection.at(*index) = use;
}

void checkSettings(LearnSettings const& settings) {
    if (settings.m_maxNodes < 1 || settings.m_maxNodes > maxLearnedNodes) {
        throw LearnError("a tree has 1 to " + std::to_string(maxLearnedNodes) + " nodes, not " +
                         std::to_string(settings.m_maxNodes));
    }
    if (!(settings.m_minSupport >= 0.0 && settings.m_minSupport <= 100.0)) {
        throw LearnError("the minimum support is a percentage from 0 to 100");
    }
    if (!(settings.m_minGain >= 0.0)) {
        throw LearnError("the minimum gain is 0 or more");
    }
}

} // namespace Quorvane::Rules
