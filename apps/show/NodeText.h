// SPDX-License-Identifier: Apache-2.0
//
// What the drawings say of a node and of an elite rule in one line. Pure functions.
#pragma once

#include "apps/show/Drawings.h"

#include <string>

namespace Quorvane::Show {

// The share of mail that comes to a node, 0..1: as measured, or else as the file tells it; 0 where
// neither is known.
double shareOf(Drawing const& drawing, ShownNode const& node);

// "97 % spam, 12 % of the training mail, 8.3 % measured".
std::string nodeLine(Drawing const& drawing, ShownNode const& node);
// "1,234 messages: 1,100 spam, 134 ham"; that they are unknown when one of the counts is below 0;
// empty when the file has no counts.
std::string countsLine(ShownNode const& node);
// "9001: 97 % spam, when NAME is VALUE and ..."
std::string eliteLine(ShownElite const& rule);
// "always", or the tests of a rule joined by "and".
std::string eliteConditions(ShownElite const& rule);

} // namespace Quorvane::Show
