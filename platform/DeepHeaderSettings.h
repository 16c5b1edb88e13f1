// SPDX-License-Identifier: Apache-2.0
//
// DeepHeaderSettings: the thresholds and switches of one scan, a plain record copied into each
// query. On the scale of the rule files (confidence 0..1) the default thresholds mean "never
// judge": a host that wants verdicts sets its own.
#pragma once

#include <cstdint>

namespace Quorvane {

struct DeepHeaderSettings {
    // 0: the tree walk stops at the first interior node that is confident enough for spam.
    std::uint8_t walkToLeaf = 1;
    // Probability of spam (0..1) from which a message is spam.
    double spamThreshold = 95.0;
    // Probability of ham (0..1) from which a message is ham.
    double hamThreshold = 95.0;
    // Percentage (0..100) of the training messages that a rule must have seen.
    double minSupport = 0.15;
    // Elite rules of a higher level are left out.
    std::int32_t maxEliteLevel = 1;
    // Reputation score (0..9, compared unsigned) from which a relay ends the walk along the trail.
    std::int32_t scoreThreshold = 6;
};

} // namespace Quorvane
