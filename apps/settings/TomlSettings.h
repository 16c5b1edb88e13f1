// SPDX-License-Identifier: Apache-2.0
//
// Settings as TOML gives them, for the files that hold some: every error is a SettingsError with
// file, line and column. toml++ compiles slowly: only what reads such a file includes this.
#pragma once

#include "apps/settings/SettingsSection.h"
#include "apps/settings/Toml.h"

#include <optional>
#include <string>
#include <string_view>

namespace Quorvane {

// "FILE:LINE:COLUMN: ".
std::string tomlPlace(std::string const& path, toml::source_position const& at);

// `path` is what errors call the text.
toml::table parseToml(std::string const& path, std::string const& text);

// A single value as the text that the command line would give; empty when it is not of the kind.
std::optional<std::string> tomlScalar(SettingKind kind, toml::node const& node);

// What a value of the kind looks like, for errors: "a whole number".
std::string tomlExpected(SettingKind kind);

// Puts one setting on `section`, which has it. A path is relative to the folder of the file at
// `path`.
void setFromToml(SettingsSection& section, std::string_view name, toml::node const& node,
                 std::string const& path);

} // namespace Quorvane
