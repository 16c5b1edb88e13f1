// SPDX-License-Identifier: Apache-2.0
//
// The compiler's halves: each fills the part of `compiled` for one of the two rule files.
#pragma once

#include "rules/language/Compiler.h"
#include "rules/language/Syntax.h"

namespace Quorvane::Rules {

void buildElite(RulesSyntax const& rules, CompiledRules& compiled);
// Gives every node its number, in the syntax too.
void buildTree(RulesSyntax& rules, CompiledRules& compiled);

} // namespace Quorvane::Rules
