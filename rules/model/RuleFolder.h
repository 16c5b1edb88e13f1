// SPDX-License-Identifier: Apache-2.0
//
// A rule folder on disk: README, qv.dt, qv2.dt and qv.names. Reading and writing are exact
// inverses.
#pragma once

#include "rules/model/RuleSet.h"

#include <filesystem>
#include <optional>
#include <string_view>

namespace Quorvane::Rules {

// Reads a folder; if its files are links into another, all are read from where the tree is. A
// missing qv.dt is an error (no engine would load), and so is a file instead of the folder; a
// missing qv2.dt, README or qv.names is kept as missing. A qv.names that cannot be read is no
// error.
RuleSet readFolder(std::filesystem::path const& folder);

// The names alone.
SpareFile readNamesFile(std::filesystem::path const& folder);

// The content of one of ruleFileNames; empty when the set has no such file.
std::optional<Bytes> ruleFile(RuleSet const& set, std::string_view name);

// Creates `folder` if needed and puts the files there, each in one step, README last. Files that
// the set does not have are removed: an old elite file would be loaded with the new tree. For a
// folder that running hosts read, use rules/install.
void writeFolder(std::filesystem::path const& folder, RuleSet const& set);

} // namespace Quorvane::Rules
