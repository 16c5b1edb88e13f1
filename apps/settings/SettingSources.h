// SPDX-License-Identifier: Apache-2.0
//
// Where settings come from: the settings file (TOML), which programs share, and the command line.
// The keys that all programs know are at the top of the file; a program with settings of its own
// has a table there.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/settings/SettingsSection.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane {

inline constexpr OptionRow configRow{"config", "FILE", "settings file (TOML); options override it"};
inline constexpr OptionRow showConfigRow{"show-config", "",
                                         "print the settings in force and their sources"};

// Adds a row for each setting, under the heading `group`.
void addRows(std::vector<OptionRow>& rows, std::span<SettingFacts const> facts,
             std::string_view group);

// Reads the file into the sections of `program`, one of which has no title; tables of other
// programs are skipped. Throws a SettingsError with file, line and column: a file that cannot be
// read or is not TOML, an unknown key (with the one that was probably meant), a value of the wrong
// type or out of range.
void loadSettingsFile(std::string const& path, std::string_view program,
                      std::span<SettingsSection* const> sections);

// Puts the options that were given into the section. Throws a UsageError.
void takeOptions(CommandLine const& line, SettingsSection& section);

// The file that --config names, then the options. Throws a SettingsError for what is wrong in the
// file, a UsageError for a wrong option.
void readSettings(CommandLine const& line, std::string_view program,
                  std::span<SettingsSection* const> sections);

} // namespace Quorvane
