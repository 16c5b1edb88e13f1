// SPDX-License-Identifier: Apache-2.0
//
// The grammar of rule texts (docs/writing-rules.md explains it to people). Each production is one
// function of the parser. A statement ends with its line. It goes on when the next line begins with
// "name" or "because", which continue a rule or node, with "when" or "always" of an elite rule, or
// with a string of a sentence; and after a line of conditions that ends in "and".
//
//   rules         := { version | readme | names-file | elite | elite-rule | elite-tail | tree
//                    | loose-node | tree-tail }
//   version       := "version" integer
//   readme        := "readme" string
//   names-file    := "names-file" string
//   elite         := "elite" { elite-option }
//   elite-option  := "first" | "last" | "highest" | "lowest" | "select" integer
//                  | "also-tree" [ integer ] | "count" integer
//                  | "reserved1" integer | "reserved2" integer | "reserved3" hex
//   elite-rule    := ( "adjust" | "decide" | "type" integer ) number { rule-option } rule-body
//   rule-option   := "code" ( integer | character ) | "support" number | "level" integer
//                  | "flag" integer | "reserved" integer | "conditions" integer | naming
//   naming        := "name" string | "because" string { string }
//   rule-body     := "always" | "when" condition { "and" condition }
//   condition     := attribute comparison
//   attribute     := name | integer
//   comparison    := ( "==" | "!=" | "test" "(" integer ")" ) value
//   value         := word | integer
//   elite-tail    := "elite-tail" hex
//   tree          := "tree" [ "when" condition ":" ] node-facts [ block ]
//   loose-node    := "node" integer condition ":" node-facts [ block ]
//   block         := "{" { child } "}"
//   child         := "->" integer | [ "node" integer ] condition ":" node-facts [ block ]
//   node-facts    := { "confidence" number | "support" number | "counts" integer integer integer
//                    | "leaf" integer | "reserved1" hex | "reserved2" integer
//                    | "child-count" integer | "slots" integer*10 | naming }
//   tree-tail     := "tree-tail" hex
//   number        := a decimal number | "inf" | "bits" "(" hexadecimal ")"
//   hex           := a string of pairs of hexadecimal digits
#pragma once

#include "rules/language/Syntax.h"

#include <string_view>
#include <vector>

namespace Quorvane::Rules {

// Parses what it can and adds every error to `errors`. The result means nothing when there are any.
RulesSyntax parseRules(std::string_view text, std::vector<Diagnostic>& errors);

} // namespace Quorvane::Rules
