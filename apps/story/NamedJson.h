// SPDX-License-Identifier: Apache-2.0
//
// Names of rules in JSON: the same two keys wherever a rule or a node is meant. A pure function.
#pragma once

#include "rules/model/RuleNames.h"

#include <nlohmann/json_fwd.hpp>

namespace Quorvane {

// Adds "ruleName" and "ruleSentence", as far as there are any, after the other keys of an object.
// `name` may be null.
nlohmann::ordered_json named(nlohmann::ordered_json json, Rules::RuleName const* name);

} // namespace Quorvane
