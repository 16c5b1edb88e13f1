// SPDX-License-Identifier: Apache-2.0
//
// The settings file (TOML), which programs share: the keys that all of them know at the top, and a
// table for each program that has settings of its own.
#pragma once

#include "apps/settings/SettingsSection.h"

#include <span>
#include <string>
#include <string_view>

namespace Quorvane {

// Reads the file into the sections of `program`, one of which has no title; tables of other
// programs are skipped. Throws a SettingsError with file, line and column: a file that cannot be
// read or is no TOML, an unknown key (with the one that was probably meant), a value of the wrong
// type or out of range.
void loadSettingsFile(std::string const& path, std::string_view program,
                      std::span<SettingsSection* const> sections);

} // namespace Quorvane
