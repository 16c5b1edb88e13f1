// SPDX-License-Identifier: Apache-2.0
//
// The installed sets on disk, as Installer.h describes them. REQUIRES for all that change
// something: the caller holds the lock of the folder.
#pragma once

#include "rules/install/Installer.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Quorvane::Rules {

// A set of its own below the rule folder.
struct SetFolder {
    // Of the folder: the version, and "-2" and so on if that was taken. Empty: the rule folder
    // itself, in which files stand where the links belong.
    std::string m_name;
    InstalledSet m_set;
    std::string m_before; // name of the set to which a rollback leads; empty: none
};

// The set in force first, then from the newest to the oldest.
std::vector<SetFolder> setFolders(std::filesystem::path const& folder);

// Removes what a killed installation left, and the oldest sets, so that there is room for one more.
void sweepSets(std::filesystem::path const& folder);

// Takes files that stand where the links belong into a set of their own, and puts the links there.
// Whoever reads meanwhile finds the same bytes.
void adoptFiles(std::filesystem::path const& folder);

// Where a set is from, and what a rollback leads to.
struct Origin {
    std::string m_source;
    std::optional<std::int32_t> m_restored;
    std::string m_before;
};

// Adds `set`, which has a version, and puts it in force in one step.
void putInForce(std::filesystem::path const& folder, RuleSet const& set, Origin const& origin);

} // namespace Quorvane::Rules
