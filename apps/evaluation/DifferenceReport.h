// SPDX-License-Identifier: Apache-2.0
//
// A comparison of two rule sets as a report: text for people at a terminal, JSON for programs,
// and one HTML page. All three tell the same. Pure functions.
#pragma once

#include "platform/DeepHeaderSettings.h"
#include "rules/evaluate/Difference.h"
#include "rules/model/RuleSet.h"

#include <cstddef>
#include <string>

namespace Quorvane::Reports {

struct ComparedRules {
    std::string const& m_name; // as the user called them
    Rules::RuleSet const& m_set;
};

struct ComparedSets {
    ComparedRules m_before;
    ComparedRules m_after;
    DeepHeaderSettings const& m_settings; // of both
};

// Groups of changes that are shown at a terminal, and on a page.
inline constexpr std::size_t shownChanges = 10;
inline constexpr std::size_t pageChanges = 50;

std::string differenceText(Rules::Difference const& difference, ComparedSets const& sets);
std::string differenceJson(Rules::Difference const& difference, ComparedSets const& sets);
std::string differenceHtml(Rules::Difference const& difference, ComparedSets const& sets);

} // namespace Quorvane::Reports
