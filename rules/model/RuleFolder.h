// SPDX-License-Identifier: Apache-2.0
//
// A rule folder on disk: README, qv.dt and qv2.dt. Reading and writing are exact inverses.
#pragma once

#include "rules/model/RuleSet.h"

#include <filesystem>

namespace Quorvane::Rules {

// Reads a folder. A missing qv.dt is an error (no engine would load), and so is a file instead of
// the folder; a missing qv2.dt or README is kept as missing.
RuleSet readFolder(std::filesystem::path const& folder);

// Creates `folder` if needed and puts the files there, each in one step, README last. Files that
// the set does not have are removed: an old elite file would be loaded with the new tree. For a
// folder that running hosts read, use rules/install.
void writeFolder(std::filesystem::path const& folder, RuleSet const& set);

} // namespace Quorvane::Rules
