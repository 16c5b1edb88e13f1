// SPDX-License-Identifier: Apache-2.0
//
// Rule sets replaced under running hosts.
//
// A host reads the version in README, and when it is greater than its own it loads qv2.dt and then
// qv.dt. No host may load files of two sets. So an installation
//   1. writes and syncs the new files beside the old ones, and keeps the old set in "previous/";
//   2. closes the gate: README gets version 0, which no host loads, so that no load begins;
//   3. waits until the loads that had begun are over (`settle`);
//   4. renames the new files over the old ones, README with the greater version last.
// Running hosts keep scanning with their rules all the time. A host that starts between 2 and 4
// finds nothing to load and has to look again. Two cases are not covered: a host that pauses for
// longer than `settle` in the middle of a load (it mixes two sets until it next looks), and hosts
// of a folder whose README had no version, which load whenever they look and cannot be stopped.
//
// One installation runs at a time: the folder is locked (flock). An interrupted one leaves the gate
// closed; installing or rolling back again opens it. Signals that end a program are held back
// between 2 and 4. Errors are RuleErrors; after an error the old set is in use.
#pragma once

#include "rules/model/RuleSet.h"

#include <chrono>
#include <filesystem>

namespace Quorvane::Rules {

// How long a host that has just looked at README may still be reading the two rule files.
inline constexpr std::chrono::milliseconds usualSettle{250};

struct Installation {
    std::int32_t m_version;
    // Empty when nothing was replaced that could be restored.
    std::optional<std::int32_t> m_previous;
};

// Installs `set` in `folder`, which is created if needed. The version is the set's own, or one more
// than every version found in the folder if that is greater.
Installation installRules(std::filesystem::path const& folder, RuleSet set,
                          std::chrono::milliseconds settle = usualSettle);

// Restores the previous set with a greater version, and keeps the present one as the previous, so
// that doing it twice leads back.
Installation rollBack(std::filesystem::path const& folder,
                      std::chrono::milliseconds settle = usualSettle);

} // namespace Quorvane::Rules
