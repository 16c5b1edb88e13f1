// SPDX-License-Identifier: Apache-2.0
//
// Settings in TOML, for all files that hold some: every error is a SettingsError with file, line
// and column. toml++ compiles slowly: only sources that read such a file include this.
#pragma once

#include "apps/settings/SettingsSection.h"
#include "apps/settings/Toml.h"
#include "rules/model/FilePlace.h"

#include <optional>
#include <string>
#include <string_view>

namespace Quorvane {

// A place in the text that toml++ has read from `path`.
Rules::FilePlace tomlPlace(std::string const& path, toml::source_position const& at);

// Errors name the text `path`.
toml::table parseToml(std::string const& path, std::string const& text);

// A single value as the text that the command line would give; empty when it has another type.
std::optional<std::string> tomlScalar(SettingKind kind, toml::node const& node);

// The description of a kind for errors: "a whole number".
std::string tomlExpected(SettingKind kind);

// Sets a setting that `section` has. A path is relative to the folder of the file at `path`.
void setFromToml(SettingsSection& section, std::string_view name, toml::node const& node,
                 std::string const& path);

} // namespace Quorvane
