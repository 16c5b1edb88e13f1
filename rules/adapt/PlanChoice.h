// SPDX-License-Identifier: Apache-2.0
//
// Finds out how to adapt rules to a site's mail, and whether that is worth it. A third of the mail
// is kept aside. On the rest several plans are tried, each on mail that its rules have not seen;
// the best one then makes rules of that rest, and these and the present rules judge the mail aside.
//
// Pure: the same mail gives the same result.
#pragma once

#include "rules/adapt/Adapter.h"

#include <cstddef>
#include <functional>

namespace Quorvane::Rules {

// Of one part of the mail.
struct RuleFigures {
    LabelCounts m_messages;
    LabelCounts m_calledSpam;
    double m_area = 0.5;
    // Messages called spam at the threshold that calls at most one ham message in a thousand spam.
    LabelCounts m_atOneInThousand;
};

struct AdaptOutcome {
    AdaptPlan m_plan;
    RuleFigures m_before; // both on the mail that was kept aside
    RuleFigures m_after;
    AdaptedRules m_rules; // made by the plan from all the mail

    // Whether the adapted rules are the better ones: they lose less wanted mail, or catch more spam
    // and lose no more than the present ones or one message in a thousand.
    bool isBetter() const;
};

// Told before each plan that is tried: its number from 0 on, and how many there are.
using PlanProgress = std::function<void(std::size_t plan, std::size_t plans)>;

// `mail` has spam and ham.
AdaptOutcome adaptToSite(RuleSet const& rules, CountedVectors const& mail,
                         AdaptLimits const& limits, JudgeMaker const& makeJudge,
                         PlanProgress const& progress = {});

} // namespace Quorvane::Rules
