// SPDX-License-Identifier: Apache-2.0
//
// Adapts rules to the mail of one site. What the rules say is taken as if it had been learned from
// a few messages; the messages of the site count beside these:
// - The probability of an elite rule is estimated again. A rule whose verdict does not hold at the
//   site is left out.
// - Adjusting rules are kept or left out, as the plan says. They keep the tree from calling mail
//   spam that it does not know. Without them a node does so only if the site's mail proves it.
// - The probabilities of the nodes are estimated again. A node that called messages spam, with no
//   adjusting rule to hold it back, goes on until the site's mail says otherwise. A leaf with
//   enough mail of the site grows branches of its own.
//
// Pure: the same mail gives the same rules.
#pragma once

#include "rules/adapt/TableSplit.h"
#include "rules/evaluate/Evaluation.h"
#include "rules/model/RuleNames.h"
#include "rules/model/RuleSet.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace Quorvane::Rules {

// How much the mail of the site counts against the rules.
struct AdaptPlan {
    double m_ruleMessages = 50.0; // what an elite rule says weighs as much as so many messages
    double m_nodeMessages = 20.0; // what a node says
    // Ham messages that each node is taken to have beside those seen: with more of them, a leaf
    // needs more spam before it calls a message spam.
    double m_unseenHam = 0.0;
    bool m_grows = true;
    bool m_keepsAdjusting = true;
};

// What counts as a verdict, and what a rule needs to be used: the settings of the host.
struct AdaptLimits {
    double m_spamThreshold = 0.95;
    double m_minSupport = 0.15; // percentage of the mail
};

// Of one elite rule.
struct RuleChange {
    RuleKey m_rule;
    LabelCounts m_decided; // messages of the site
    double m_before = 0.0; // probability, or the adjustment
    double m_after = 0.0;
    bool m_isLeftOut = false;
};

struct AdaptedRules {
    RuleSet m_set;
    std::vector<RuleChange> m_changes; // by kind and code
    std::size_t m_nodesAdded = 0;
};

// An engine with these rules.
using JudgeMaker = std::function<Judge(RuleSet const&)>;

// `mail` is not empty.
AdaptedRules adaptRules(RuleSet const& rules, CountedVectors const& mail, AdaptPlan const& plan,
                        AdaptLimits const& limits, JudgeMaker const& makeJudge);

} // namespace Quorvane::Rules
