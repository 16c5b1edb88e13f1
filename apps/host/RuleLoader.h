// SPDX-License-Identifier: Apache-2.0
//
// The rules of a host: those that lie below the process's root folder, and those in memory.
#pragma once

#include "DeepHeaderEngine.h"
#include "rules/model/RuleSet.h"

#include <string>

namespace Quorvane {

// Names the folder below which rules are looked up, at the first call; at later ones a
// SettingsError when it is another folder, as loaded rules and paths would no longer fit together.
void useRoot(std::string const& folder);

// Loads the rules if they are newer than those in force. A SettingsError that says why when they
// cannot be loaded; those in force then stay.
DeepHeaderEngine loadRules();

// An engine with these rules. A RuleError when no host could load them.
DeepHeaderEngine engineOf(Rules::RuleSet const& rules);

} // namespace Quorvane
