// SPDX-License-Identifier: Apache-2.0
//
// A ROC curve: how much spam is caught for how much ham called spam. Pure.
#pragma once

#include "apps/charts/Drawing.h"
#include "apps/charts/Scale.h"
#include "rules/evaluate/Roc.h"
#include "rules/evaluate/Wilson.h"

#include <string>
#include <vector>

namespace Quorvane::Charts {

// Points of a curve that mean something, each with the interval of the spam that it catches.
struct RocMarks {
    // Shares of ham called spam at which the caught spam is told; shown on a logarithmic scale.
    std::vector<double> m_falsePositives;
    // What the thresholds in force give.
    Rules::Rate m_hamCalledSpam;
    Rules::Rate m_spamCalledSpam;
    std::string m_name; // of that point
};

// An SVG element; spam and ham must both be there. With `kind` linear the curve is the one whose
// area is measured: thresholds joined by straight lines, dashed where only messages are left that
// no rule decides. Logarithmic it is a staircase: what is caught with at most so much ham called
// spam; where less than one message of the ham would lie is shaded.
std::string rocChart(Caption const& caption, Rules::RocCurve const& curve, RocMarks const& marks,
                     Scale::Kind kind);

} // namespace Quorvane::Charts
