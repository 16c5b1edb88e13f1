// SPDX-License-Identifier: Apache-2.0
//
// The parts of the checker. Each appends its findings.
#pragma once

#include "platform/DeepHeaderSettings.h"
#include "rules/check/EliteRun.h"
#include "rules/check/Finding.h"
#include "rules/check/TreeFindings.h"
#include "rules/check/TreeLinks.h"
#include "rules/model/RuleSet.h"

namespace Quorvane::Rules {

// Nodes that several parents share are walked once for each path. A tree made to have very many
// paths is walked so far; what was not looked at is not reported.
inline constexpr int maxPathSteps = 200000;

void checkReadme(RuleSet const& set, Findings& findings);
// qv2.dt as the loader sees it, rule by rule.
void checkElite(EliteFile const& elite, DeepHeaderSettings const& settings, Findings& findings);
// Elite rules that others always keep from being used.
void checkEliteShadows(EliteRun const& run, Findings& findings);
// qv.dt as the loader sees it, record by record.
void checkTreeFile(RuleSet const& set, DeepHeaderSettings const& settings, Findings& findings);
// The tree as the walk sees it, from the root on. REQUIRES: tree.hasRoot(), here and below.
void checkTreeRoot(TreeLinks const& tree, DeepHeaderSettings const& settings,
                   TreeFindings& findings);
void checkTreeLinks(TreeLinks const& tree, TreeFindings& findings);
void checkTreePaths(TreeLinks const& tree, TreeFindings& findings);
// Whether any message can be called spam, and any ham.
void checkVerdicts(TreeLinks const& tree, EliteRun const& run, DeepHeaderSettings const& settings,
                   Findings& findings);

} // namespace Quorvane::Rules
