// SPDX-License-Identifier: Apache-2.0
//
// Rule sets replaced under running hosts.
//
// Each installed set is a folder of its own, which never changes. Hosts look for three fixed names,
// and these are links into the set in force:
//
//   README -> current/README        current -> sets/42
//   qv.dt  -> current/qv.dt         sets/42/README, qv.dt, qv2.dt, origin
//   qv2.dt -> current/qv2.dt        sets/41/..., the sets to go back to
//
// An installation writes the new set, syncs it, and then renames one link over `current`. At every
// moment, and after a crash at every moment, a host finds the old set or the new one. A host that
// reads while the link is replaced takes both rule files from one set, as the library looks where
// the links lead before it opens them. What remains: a program that opens the fixed names one by
// one (cp, tar) may get files of two sets, and an installation that replaces `keptSets` sets while
// a host is between two files makes that load fail; the host keeps its rules and looks again.
//
// Files that somebody put in the place of the links are taken into a set of their own first.
//
// One installation runs at a time: the folder is locked (flock). The next one removes what a killed
// one left. Errors are RuleErrors; after an error the old set is in force.
#pragma once

#include "rules/model/RuleSet.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Quorvane::Rules {

// The set in force and those to go back to. Enough to undo a bad week; each takes some kilobytes.
inline constexpr std::size_t keptSets = 10;

struct InstalledSet {
    std::int32_t m_version = 0; // 0: README names none
    std::filesystem::file_time_type m_installed;
    std::string m_source; // what was installed, as the caller named it; empty: not known
    // The version whose rules these are, if they were brought back.
    std::optional<std::int32_t> m_restored;
    // The version to which a rollback leads from here; empty when it is no longer kept.
    std::optional<std::int32_t> m_before;
    std::filesystem::path m_folder;
};

// What is kept in `folder`, the set in force first and then from the newest to the oldest. Empty
// when nothing was installed there.
std::vector<InstalledSet> installedSets(std::filesystem::path const& folder);

// The version that a set would get in `folder`: its own, or one more than every version found there
// if that is greater. A RuleError when the version cannot grow.
std::int32_t versionFor(std::filesystem::path const& folder, RuleSet const& set);

// Puts `set` in force in `folder`, which is created if needed, and returns the sets as
// installedSets does. `source` says where the set is from.
std::vector<InstalledSet> installRules(std::filesystem::path const& folder, RuleSet set,
                                       std::string const& source);

// Brings back the rules of `version`, or without one those before the set in force: each call leads
// one step further back. They get a greater version, so that hosts take them up.
std::vector<InstalledSet> rollBack(std::filesystem::path const& folder,
                                   std::optional<std::int32_t> version = std::nullopt);

} // namespace Quorvane::Rules
