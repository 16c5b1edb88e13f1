// SPDX-License-Identifier: Apache-2.0
//
// `qvrules explain`: what rules say of a message or a vector, why, and what would have been needed
// for another verdict.
#pragma once

#include "apps/host/ScanHost.h"
#include "apps/story/TrailStory.h"

#include <string>
#include <vector>

namespace Quorvane::RulesApp {

// One line with the keys source, verdict, node, confidence, support, adjust, adjustReason, reasons,
// because, sentences, path, end, elite, needed and attributes. Text is ASCII as in the records of
// qvscan. REQUIRES: host.trace(outcome) was called.
std::string explanationJson(std::string const& source, ScanHost const& host,
                            ScanOutcome const& outcome, std::vector<StoryHop> const& trail);

} // namespace Quorvane::RulesApp
