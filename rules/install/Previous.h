// SPDX-License-Identifier: Apache-2.0
//
// The set that an installation replaced, kept in the folder "previous" inside the rule folder.
#pragma once

#include "rules/model/RuleSet.h"

#include <filesystem>
#include <optional>

namespace Quorvane::Rules {

// Empty when there is none.
std::optional<RuleSet> previousSet(std::filesystem::path const& folder);

// Replaces the previous set in one step, so that there is never half of one.
void keepAsPrevious(std::filesystem::path const& folder, RuleSet const& set);

} // namespace Quorvane::Rules
