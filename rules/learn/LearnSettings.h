// SPDX-License-Identifier: Apache-2.0
//
// The settings of the learner. Plain values; the default rules were learned with the defaults.
#pragma once

#include "rules/format/AttributeTable.h"
#include "rules/format/RuleFiles.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace Quorvane::Rules {

enum class ImpurityKind { entropy, gini };

// Nodes that a tree can have: the records before the root stay unused.
inline constexpr int maxLearnedNodes = maxTreeNodes - treeRoot;

using AttributeSelection = std::array<bool, attributeCount>;

// Every attribute but those that depend on answered look-ups (first_helo_resolves, first_forged,
// envelope_domain_resolves): a verdict must not change because a name server was slow.
AttributeSelection defaultAttributes();

// Adds the attribute called `name` to the selection, or removes it without `use`. A LearnError when
// there is no such attribute.
void selectAttribute(AttributeSelection& selection, std::string_view name, bool use);

struct LearnSettings {
    ImpurityKind m_impurity = ImpurityKind::entropy;
    // Percentage of the training messages that must reach a node. At least the engine's minSupport,
    // or the walk would never enter the node.
    double m_minSupport = 0.15;
    // What a split must gain in impurity, averaged over all training messages.
    double m_minGain = 0.0;
    int m_maxNodes = maxLearnedNodes; // the root counts
    AttributeSelection m_attributes = defaultAttributes();
};

// A LearnError for the first value that is out of range.
void checkSettings(LearnSettings const& settings);

} // namespace Quorvane::Rules
