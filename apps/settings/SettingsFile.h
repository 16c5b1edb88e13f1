// SPDX-License-Identifier: Apache-2.0
//
// The settings file (TOML): the keys of SettingsTable.h at the top, and tables of single programs
// below, which each program names and reads by itself.
#pragma once

#include "apps/settings/SettingsStore.h"

#include <span>
#include <string>
#include <string_view>

namespace Quorvane {

// The tables that belong to single programs. A program skips those of the others.
inline constexpr std::string_view milterTable = "milter";

// Puts the settings of the file on `store`. Throws a SettingsError with file, line and column: a
// file that cannot be read or is no TOML, an unknown key (with the one that was probably meant), a
// value of the wrong type or out of range.
void loadSettingsFile(std::string const& path, SettingsStore& store);

} // namespace Quorvane
