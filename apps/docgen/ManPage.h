// SPDX-License-Identifier: Apache-2.0
//
// ManPage: the source of a manual page (mdoc macros): prose in which these marks, each on a line of
// its own, are replaced by text from the tables:
//   @OPTIONS Output@  the options of a section, or the options and arguments of a command
//   @COMMANDS@        a subsection for each command without an @OPTIONS before it
//   @SYNOPSIS@        one line for each command
//   @SETTINGS@        the keys at the top of the settings file
//   @SETTINGS name@   those of the table [name]
//   @VERSION@         the version; anywhere in a line
// Pure.
#pragma once

#include "apps/commandline/OptionTable.h"
#include "apps/settings/SettingRow.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane::Docs {

// The settings of the tables of the settings file, by title.
using SettingTables = std::map<std::string, std::vector<SettingFacts>, std::less<>>;

// Throws std::runtime_error when `prose` names an unknown section, or leaves options out.
std::string manPage(ProgramTable const& program, SettingTables const& settings,
                    std::string_view prose, std::string_view version);

} // namespace Quorvane::Docs
