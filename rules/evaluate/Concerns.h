// SPDX-License-Identifier: Apache-2.0
//
// What in the figures of a corpus says that the rules do not suit its mail. Pure functions.
#pragma once

#include "rules/evaluate/Evaluation.h"

#include <string>
#include <vector>

namespace Quorvane::Rules {

// There is spam and ham, and the rules put ham above spam more often than spam above ham.
bool isBelowGuessing(CorpusFigures const& figures);

// How far the confidences are from the actual share of spam, 0..1: the mean distance of the
// confidence of each tenth from the 95 % interval of that share, weighted by messages. What chance
// explains is thus no distance. 0 without both spam and ham, since a share of one kind of mail
// says nothing about confidences.
double calibrationGap(CorpusFigures const& figures);

// Confidences are far off when the gap is as wide as the tenths in which it is measured.
inline constexpr double farOffGap = 0.1;

// A sentence for each concern; mostly none.
std::vector<std::string> concerns(CorpusFigures const& figures);

} // namespace Quorvane::Rules
