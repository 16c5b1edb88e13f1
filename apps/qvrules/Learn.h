// SPDX-License-Identifier: Apache-2.0
//
// What the words of `qvrules learn` mean. Each throws a UsageError.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/qvrules/TrainingMail.h"
#include "rules/learn/Learner.h"

namespace Quorvane::RulesApp {

Rules::LearnSettings learnSettings(CommandLine const& line);
Rules::PruningPlan pruningPlan(CommandLine const& line);
TrainingMail trainingMail(CommandLine const& line);

} // namespace Quorvane::RulesApp
