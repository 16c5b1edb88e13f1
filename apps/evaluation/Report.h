// SPDX-License-Identifier: Apache-2.0
//
// An evaluation as a report: text for people at a terminal, JSON for programs, and one HTML page
// with drawings. All three tell the same. Pure functions.
#pragma once

#include "platform/DeepHeaderSettings.h"
#include "rules/evaluate/Evaluation.h"
#include "rules/model/RuleSet.h"

#include <cstddef>
#include <string>

namespace Quorvane::Reports {

// What a report shows besides the figures.
struct EvaluatedRules {
    std::string const& m_name; // as the user called them
    Rules::RuleSet const& m_set;
    DeepHeaderSettings const& m_settings;
};

// The false positive rates at which the caught spam is told.
inline constexpr double toldFalsePositives[] = {0.001, 0.005, 0.01};

// Deciders of each list that are shown to people.
inline constexpr std::size_t shownDeciders = 10;

std::string reportText(Rules::Evaluation const& evaluation, EvaluatedRules const& rules);
std::string reportJson(Rules::Evaluation const& evaluation, EvaluatedRules const& rules);
std::string reportHtml(Rules::Evaluation const& evaluation, EvaluatedRules const& rules);

} // namespace Quorvane::Reports
