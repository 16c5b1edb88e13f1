// SPDX-License-Identifier: Apache-2.0
//
// The parts of the checker. Each appends its findings.
#pragma once

#include "platform/DeepHeaderSettings.h"
#include "rules/check/EliteRun.h"
#include "rules/check/Finding.h"
#include "rules/check/TreeLinks.h"
#include "rules/model/RuleSet.h"

#include <set>
#include <utility>

namespace Quorvane::Rules {

// Nodes that several parents share are walked once for each path. A walk through a tree made to
// have very many paths stops here; what was not looked at is not reported.
inline constexpr int maxPathSteps = 200000;

// Findings about nodes, each once, however many paths of the tree lead to it.
class TreeFindings {
  public:
    void add(Finding::Severity severity, char const* id, std::int32_t number,
             std::string const& problem, std::string const& advice);
    // Appends what was found to `findings`, by node.
    void moveTo(Findings& findings);

  private:
    Findings m_found;
    std::set<std::pair<std::int32_t, std::string>> m_reported;
};

// "node 7".
std::string nodeName(std::int32_t number);

// Problems of figures, the same for both files.
std::string notAProbability(double confidence);
std::string notAPercentage(double support);
std::string belowMinimum(double support, double minSupport);

void checkReadme(RuleSet const& set, Findings& findings);
// Names that nothing has, and a file of names that cannot be used.
void checkNames(RuleSet const& set, Findings& findings);
// qv2.dt as the loader sees it, rule by rule.
void checkElite(EliteFile const& elite, DeepHeaderSettings const& settings, Findings& findings);
// Elite rules that are never used because of others.
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
