// SPDX-License-Identifier: Apache-2.0
//
// Whether confidences can be believed: the share of spam that was really there, for each tenth of
// the confidence. Pure.
#pragma once

#include "apps/charts/Drawing.h"
#include "rules/evaluate/Evaluation.h"

#include <string>

namespace Quorvane::Charts {

// An SVG element: a dot with its interval for each tenth that has messages; where confidences are
// right the dots lie on the diagonal. Below them the numbers of messages.
std::string reliabilityChart(Caption const& caption, Rules::CorpusFigures const& figures);

} // namespace Quorvane::Charts
