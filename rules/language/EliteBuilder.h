// SPDX-License-Identifier: Apache-2.0
//
// The compiler's half for qv2.dt.
#pragma once

#include "rules/language/Compiler.h"
#include "rules/language/Syntax.h"

namespace Quorvane::Rules {

// Fills the elite part of `compiled`.
void buildElite(RulesSyntax const& rules, CompiledRules& compiled);

} // namespace Quorvane::Rules
