// SPDX-License-Identifier: Apache-2.0
//
// The parts of the page on a difference, each as HTML. Pure functions.
#pragma once

#include "apps/evaluation/DifferenceReport.h"

#include <string>

namespace Quorvane::Reports {

// Each kind of change with the rules before and after it, most messages first.
std::string groupSection(Rules::Difference const& difference, ComparedSets const& sets);

// "1,234 spam, 5 ham": the kinds that there are, or "none".
std::string kindsText(Rules::KindCounts const& counts);

// "none → spam".
std::string changeText(Rules::ChangeGroup const& group);

} // namespace Quorvane::Reports
