// SPDX-License-Identifier: Apache-2.0
//
// What an adaptation did, in words. Pure functions.
#pragma once

#include "rules/adapt/PlanChoice.h"

#include <string>

namespace Quorvane::Rules {

// The comment above adapted rules, lines that begin with "#": from which mail they were made, how
// they did on mail that was kept aside, and why each elite rule changed. No date and no path: the
// same rules and mail give the same text.
std::string adaptedComment(CountedVectors const& mail, AdaptOutcome const& outcome);

// The figures before and after, as lines of a table.
std::string adaptedFigures(AdaptOutcome const& outcome);

} // namespace Quorvane::Rules
