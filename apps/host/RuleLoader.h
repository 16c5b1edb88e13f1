// SPDX-License-Identifier: Apache-2.0
//
// The rules of a host: those below the process's root folder, those in a folder of rules that a
// user gives instead (rules/format/RulePlace.h), and those in memory.
#pragma once

#include "apps/settings/SettingsSection.h"
#include "apps/settings/SettingValue.h"
#include "DeepHeaderEngine.h"
#include "rules/model/RuleNames.h"
#include "rules/model/RuleSet.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace Quorvane {

// The first call sets the folder below which rules are read. A later call with another folder is a
// SettingsError, as loaded rules and paths would no longer match.
void useRoot(std::string const& folder);

// For a program that is tried before any rules are installed: when `settings` say nothing about the
// root and no rules are installed in "/", the root becomes that of the rules which came with the
// program, in share/qvdeepheader/root beside its bin folder.
void useOwnRulesIfNoneAreInstalled(SettingsSection& settings);
// The same for what is no program: `prefix` is the folder with lib and share.
void useOwnRulesIfNoneAreInstalled(SettingsSection& settings, std::filesystem::path const& prefix);

struct LoadedRules {
    DeepHeaderEngine m_engine;
    std::optional<std::int32_t> m_version; // empty: README names none
    // Of rules in files, a problem begins with the path of the file.
    Rules::NamesRead m_names;
};

// There are no rules that could be put in force; the settings may be in perfect order.
class NoRulesError : public SettingsError {
  public:
    using SettingsError::SettingsError;
};

// The version that README names; empty when it names none. `root`: in use, or a folder of rules.
std::optional<std::int32_t> installedVersion(std::string const& root);

// Loads the rules, those below the root folder if they are newer than those in force. A
// NoRulesError that says why when they cannot be loaded; those in force then stay.
LoadedRules loadRules(std::string const& root);

// An engine with these rules. A RuleError when no host can load them.
DeepHeaderEngine engineOf(Rules::RuleSet const& rules);
// The same with version and names.
LoadedRules loadedRules(Rules::RuleSet const& rules);

} // namespace Quorvane
