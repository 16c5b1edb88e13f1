// SPDX-License-Identifier: Apache-2.0
//
// What the drawings say of numbers, nodes and elite rules. Rule files may hold any number, NaN and
// infinities too: what is not a share or a count is shown as unknown, with the number from the
// file. Pure functions.
#pragma once

#include "apps/show/Drawings.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Quorvane::Show {

// A probability or share, 0..1, as "97 %", "0.15 %", "99.6 %": three significant digits at most;
// "unknown (97)".
std::string percentText(double share);

// "97 % spam", "unknown share of spam (97)".
std::string spamShareText(double confidence);

// A percentage, 0..100, as "14.28 %"; "unknown (-1)".
std::string supportText(double percentage);

// "1,234,567"; "unknown (-1)".
std::string countText(std::int64_t count);

// Shades of a probability of spam, from blue (ham) over grey to orange (spam): they can be told
// apart with any colour vision. 0: sure of ham (up to 5 %); shadeCount - 1: sure of spam (from 95 %
// on); the middle one also for NaN.
inline constexpr std::size_t shadeCount = 7;
std::size_t shadeOf(double spamShare);

// The share of mail that reaches a node, 0..1: as measured, or else as recorded in the file; 0
// where neither is known.
double shareOf(Drawing const& drawing, ShownNode const& node);

// "97 % spam, 12 % of the training mail, 8.3 % measured".
std::string nodeLine(Drawing const& drawing, ShownNode const& node);
// "1,234 messages: 1,100 spam, 134 ham"; that they are unknown when one of the counts is below 0;
// empty when the file has no counts.
std::string countsLine(ShownNode const& node);
// "always", or the tests of a rule joined by "and".
std::string eliteConditions(ShownElite const& rule);
// "elite rule 9001: 97 % spam, when NAME is VALUE and ..." for each of the first rules, which are
// as many as one can read, and how many there are after them.
std::vector<std::string> eliteLines(ShownRules const& rules);
// Its columns of figures: support, level and, if measured, how often it fired and decided.
std::vector<std::string> eliteFigures(ShownElite const& rule, Traffic const* traffic);
// "Nodes that no message can reach: 4 5"; empty when there are none.
std::string unreachedText(ShownRules const& rules);

} // namespace Quorvane::Show
