// SPDX-License-Identifier: Apache-2.0
//
// The productions of the elite rules: the header line and one line a rule.
#pragma once

#include "rules/language/Syntax.h"
#include "rules/language/TokenReader.h"

namespace Quorvane::Rules {

// Each is called after the keyword that begins the statement, which is `keyword`.
EliteHeaderSyntax parseEliteHeader(TokenReader& in, Token const& keyword);
EliteRuleSyntax parseEliteRule(TokenReader& in, Token const& keyword);

} // namespace Quorvane::Rules
