// SPDX-License-Identifier: Apache-2.0
//
// Pieces that the sections of the evaluation page share. Pure functions; what is called text is
// plain, everything else HTML.
#pragma once

#include "rules/evaluate/JudgedVector.h"
#include "rules/evaluate/Wilson.h"
#include "rules/model/RuleSet.h"
#include "rules/vectors/VectorTable.h"

#include <string>
#include <string_view>
#include <vector>

namespace Quorvane::Reports {

// A drawing with its name above; `note`: a sentence on how to read it.
std::string figure(std::string_view titleText, std::string_view noteText, std::string const& svg);

// Says why there is no drawing.
std::string noFigure(std::string_view titleText, std::string_view whyText);

// Blocks side by side where there is room.
std::string sideBySide(std::string const& left, std::string const& right);

// Four cells of a table: hits, total, share, interval. Without messages: zeros and dashes.
std::vector<std::string> rateCells(Rules::Rate const& rate);

// "84.90 %", or "none" where there are no messages.
std::string shareText(Rules::Rate const& rate);

// A figure of the page's head, within <dl class="tiles">; `note` is HTML.
std::string tile(std::string_view nameText, std::string const& value, std::string const& note);
// A rate with its counts and interval.
std::string rateTile(std::string_view nameText, Rules::Rate const& rate);

// The tests that lead to a decider: as the rule language writes them, and folded up in words.
std::string deciderTests(Rules::RuleSet const& set, Rules::Decider const& decider);

// "1,234 spam and 56 ham".
std::string labelsText(Rules::LabelCounts const& counts);

} // namespace Quorvane::Reports
