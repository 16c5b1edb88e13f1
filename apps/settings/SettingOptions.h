// SPDX-License-Identifier: Apache-2.0
//
// Settings on the command line: their rows in a program's table, and what was given.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/settings/SettingsSection.h"

#include <span>
#include <string_view>
#include <vector>

namespace Quorvane {

inline constexpr OptionRow configRow{"config", "FILE",
                                     "settings file (TOML); the command line wins"};
inline constexpr OptionRow showConfigRow{"show-config", "",
                                         "print the settings in force and their origins"};

// Adds a row for each setting, under the heading `group`.
void addRows(std::vector<OptionRow>& rows, std::span<SettingFacts const> facts,
             std::string_view group);

// Puts what was given on the section. Throws a UsageError.
void takeOptions(CommandLine const& line, SettingsSection& section);

// The file that --config names, then the options. Throws a SettingsError for what is wrong in the
// file, a UsageError for a wrong option.
void readSettings(CommandLine const& line, std::string_view program,
                  std::span<SettingsSection* const> sections);

} // namespace Quorvane
