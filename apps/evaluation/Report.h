// SPDX-License-Identifier: Apache-2.0
//
// Evaluations, and comparisons of two rule sets, as reports: text for people at a terminal, JSON
// for programs, and one HTML page. All three show the same figures. Pure functions.
#pragma once

#include "platform/DeepHeaderSettings.h"
#include "rules/evaluate/Difference.h"
#include "rules/model/RuleNames.h"
#include "rules/model/RuleSet.h"

#include <cstddef>
#include <string>

namespace Quorvane::Reports {

// What a report shows besides the figures.
struct EvaluatedRules {
    std::string const& m_name; // as the user called them
    Rules::RuleSet const& m_set;
    Rules::RuleNames const& m_ruleNames;
    DeepHeaderSettings const& m_settings;
};

// The false positive rates for which the report shows how much spam is caught.
inline constexpr double shownFalsePositives[] = {0.001, 0.005, 0.01};

// Deciders of each list that are shown to people.
inline constexpr std::size_t shownDeciders = 10;

std::string reportText(Rules::Evaluation const& evaluation, EvaluatedRules const& rules);
std::string reportJson(Rules::Evaluation const& evaluation, EvaluatedRules const& rules);
std::string reportHtml(Rules::Evaluation const& evaluation, EvaluatedRules const& rules);

// Groups of changes that are shown at a terminal, and on a page.
inline constexpr std::size_t shownChanges = 10;
inline constexpr std::size_t pageChanges = 50;

// Both judge with the same settings.
struct ComparedSets {
    EvaluatedRules m_before;
    EvaluatedRules m_after;
};

std::string differenceText(Rules::Difference const& difference, ComparedSets const& sets);
std::string differenceJson(Rules::Difference const& difference, ComparedSets const& sets);
std::string differenceHtml(Rules::Difference const& difference, ComparedSets const& sets);

} // namespace Quorvane::Reports
