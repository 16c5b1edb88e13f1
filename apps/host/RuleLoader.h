// SPDX-License-Identifier: Apache-2.0
//
// The rules of a host: those below the process's root folder, and those in memory.
#pragma once

#include "apps/settings/SettingValue.h"
#include "DeepHeaderEngine.h"
#include "rules/model/RuleSet.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Quorvane {

// The first call sets the folder below which rules are read. A later call with another folder is a
// SettingsError, as loaded rules and paths would no longer match.
void useRoot(std::string const& folder);

struct LoadedRules {
    DeepHeaderEngine m_engine;
    std::optional<std::int32_t> m_version; // empty: README names none
};

// There are no rules that could be put in force; the settings may be in perfect order.
class NoRulesError : public SettingsError {
  public:
    using SettingsError::SettingsError;
};

// The version that README names; empty when it names none.
std::optional<std::int32_t> installedVersion();

// Loads the rules if they are newer than those in force. A NoRulesError that says why when they
// cannot be loaded; those in force then stay.
LoadedRules loadRules();

// An engine with these rules. A RuleError when no host can load them.
DeepHeaderEngine engineOf(Rules::RuleSet const& rules);

} // namespace Quorvane
