// SPDX-License-Identifier: Apache-2.0
//
// The productions of the tree: nodes, their facts, and the blocks that hold their children.
#pragma once

#include "rules/language/Syntax.h"
#include "rules/language/TokenReader.h"

namespace Quorvane::Rules {

// Each is called after the keyword that begins the statement, which is `keyword`.
NodeSyntax parseTree(TokenReader& in, Token const& keyword);
NodeSyntax parseLooseNode(TokenReader& in, Token const& keyword);

// Reads the block of a node whose head could not be read, for the errors inside, and forgets it.
void parseStrayBlock(TokenReader& in);

} // namespace Quorvane::Rules
