// SPDX-License-Identifier: Apache-2.0
//
// An engine of our own with rules from memory; several with different rules live side by side.
#pragma once

#include "adapter/DeepHeaderAdapter.h"
#include "rules/model/RuleSet.h"

namespace Quorvane::Workshop {

// Moves the file layer's root for a moment, so call it before scans begin. A RuleError when no host
// could load the rules.
RefDeepHeaderAdapter loadEngine(Rules::RuleSet const& rules);

} // namespace Quorvane::Workshop
