// SPDX-License-Identifier: Apache-2.0
//
// The tree of rules, with what a site's mail says of it. Pure functions.
#pragma once

#include "rules/adapt/TableSplit.h"
#include "rules/evaluate/Evaluation.h"
#include "rules/format/RuleFiles.h"

#include <cstddef>
#include <vector>

namespace Quorvane::Rules {

struct TreeAdaptation {
    double m_nodeMessages; // the weight of what a node said before
    double m_sureMessages; // the weight of what one said that called messages spam
    double m_unseenHam;
    bool m_grows;
    double m_minSupport; // percentage of the mail
    // Probability from which on a node needs mail of the site that says so by itself, without what
    // the node said before; above 1: none does.
    double m_provenFrom;
    // Probability from which on a node called messages spam before. It goes on until mail of the
    // site says otherwise. Above 1: none did.
    double m_sureFrom;
};

// Estimates the nodes again by the mail that `judge` says they decide, and lets leaves grow.
// Returns how many nodes were added, at the end.
std::size_t adaptTree(std::vector<DTNode>& nodes, CountedVectors const& mail, Judge const& judge,
                      TreeAdaptation const& how);

} // namespace Quorvane::Rules
