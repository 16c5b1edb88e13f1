// SPDX-License-Identifier: Apache-2.0
//
// What became of mail: called spam, no verdict, called ham. Pure.
#pragma once

#include "apps/charts/Drawing.h"
#include "rules/evaluate/Evaluation.h"

#include <string>
#include <vector>

namespace Quorvane::Charts {

struct NamedVerdicts {
    std::string m_name; // "Spam"
    Rules::VerdictCounts m_counts;
};

// An SVG element with a bar each. No verdict is a colour of its own: it is neither right nor wrong.
std::string verdictChart(Caption const& caption, std::vector<NamedVerdicts> const& rows);

} // namespace Quorvane::Charts
