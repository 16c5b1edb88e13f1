// SPDX-License-Identifier: Apache-2.0
//
// The rules of a host: those below the process's root folder, and those in memory.
#pragma once

#include "DeepHeaderEngine.h"
#include "rules/model/RuleSet.h"

#include <string>

namespace Quorvane {

// The first call sets the folder below which rules are read. A later call with another folder is a
// SettingsError, as loaded rules and paths would no longer match.
void useRoot(std::string const& folder);

// Loads the rules if they are newer than those in force. A SettingsError that says why when they
// cannot be loaded; those in force then stay.
DeepHeaderEngine loadRules();

// An engine with these rules. A RuleError when no host can load them.
DeepHeaderEngine engineOf(Rules::RuleSet const& rules);

} // namespace Quorvane
