// SPDX-License-Identifier: Apache-2.0
//
// The parts of the checker. Each appends its findings.
#pragma once

#include "rules/check/Finding.h"
#include "rules/model/RuleSet.h"

#include <array>

namespace Quorvane::Rules {

// The node table of an engine that has loaded the set.
using NodeTable = std::array<DTNode, treeTableSize>;
NodeTable loadedTable(RuleSet const& set);

void checkReadme(RuleSet const& set, Findings& findings);
void checkElite(EliteFile const& elite, Findings& findings);
// qv.dt as the loader sees it, record by record.
void checkTreeFile(RuleSet const& set, Findings& findings);
// The tree as the walk sees it, from the root on.
void checkTreeWalk(RuleSet const& set, Findings& findings);

} // namespace Quorvane::Rules
