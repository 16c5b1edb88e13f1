// SPDX-License-Identifier: Apache-2.0
//
// The compiler's half for qv.dt: numbers the nodes of the syntax tree and lays out the records.
#pragma once

#include "rules/language/Compiler.h"
#include "rules/language/Syntax.h"

namespace Quorvane::Rules {

// Fills the tree part of `compiled`. Numbers are written into the syntax on the way.
void buildTree(RulesSyntax& rules, CompiledRules& compiled);

} // namespace Quorvane::Rules
