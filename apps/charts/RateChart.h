// SPDX-License-Identifier: Apache-2.0
//
// One rate for each of several corpora, with its interval. Pure.
#pragma once

#include "apps/charts/Drawing.h"
#include "apps/charts/Scale.h"
#include "rules/evaluate/Wilson.h"

#include <string>
#include <vector>

namespace Quorvane::Charts {

struct NamedRate {
    std::string m_name; // any bytes
    Rules::Rate m_rate; // of no messages: the chart says so
};

// An SVG element: a row each, the name and the rate above a dot with the whisker of the interval.
// On a linear scale a bar leads to the dot. `colour` is "spam", "ham" or "accent".
std::string rateChart(Caption const& caption, std::vector<NamedRate> const& rates, Scale::Kind kind,
                      std::string_view colour);

} // namespace Quorvane::Charts
