// SPDX-License-Identifier: Apache-2.0
//
// VerdictStory: why a message got its verdict, in one sentence, and what would have been needed for
// another one. Pure functions; the alternatives are tried on the engine before they are told.
#pragma once

#include "apps/host/ScanHost.h"
#include "apps/story/TrailStory.h"

#include <string>
#include <vector>

namespace Quorvane {

// "spam", "ham" or "none".
char const* verdictName(DeepHeaderAnswer const& answer);

// One sentence without a full stop: "the newest hop came by IPv6", "no public address", "no rule
// decided", "thresholds switch the tree off", "0.99 spam reaches the threshold 0.95".
std::string tellReason(ScanHost const& host, ScanOutcome const& outcome,
                       std::vector<StoryHop> const& trail);

struct ToldNeed {
    std::string m_verdict;            // "spam", "ham", "any"
    std::string m_text;               // what would have to change
    std::vector<std::string> m_words; // the same in plain words, where that says more
};

// For each other verdict the change of the fewest attributes, or of a threshold, that would have
// given it. When the scan came to no rules: what would have let it, where the host can do that.
std::vector<ToldNeed> tellNeeded(ScanHost const& host, ScanOutcome const& outcome,
                                 std::vector<StoryHop> const& trail);

} // namespace Quorvane
