// SPDX-License-Identifier: Apache-2.0
//
// The compiler's parts: each fills the part of `compiled` for one of the rule files.
#pragma once

#include "rules/language/Compiler.h"
#include "rules/language/Syntax.h"
#include "rules/model/RuleNames.h"

namespace Quorvane::Rules {

void buildElite(RulesSyntax const& rules, CompiledRules& compiled);
// Gives every node its number, in the syntax too.
void buildTree(RulesSyntax& rules, CompiledRules& compiled);

// Adds the name that is given for `key`, if there is one.
void buildName(NamingSyntax const& naming, RuleKey const& key, CompiledRules& compiled);
// The file of names, after all names have been added.
void buildNamesFile(RulesSyntax const& rules, CompiledRules& compiled);

} // namespace Quorvane::Rules
