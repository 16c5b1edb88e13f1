// SPDX-License-Identifier: Apache-2.0
//
// What the steps of a scan did: names for programs ("trusted", "late") and words for people
// ("trusted relay, skipped", "no answer before the deadline"). Pure functions.
#pragma once

#include "ScanRecord.h"

#include <string>

namespace Quorvane {

char const* roleName(HopRole role);
std::string roleText(RecordedHop const& hop);

char const* questionName(RecordedLookup::Question question);
char const* lookupName(LookupResult result);
char const* lookupText(LookupResult result);

char const* outcomeName(RuleOutcome outcome);
std::string outcomeText(RecordedRule const& rule, ScanRecord const& record);

char const* treeUseName(TreeUse use);
char const* walkEndName(WalkEnd end);
// Empty when the tree was not walked.
char const* walkEndText(WalkEnd end);

} // namespace Quorvane
