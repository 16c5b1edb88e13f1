// SPDX-License-Identifier: Apache-2.0
//
// RocCurve: how much spam is caught for how many false positives, over all thresholds at once.
//
// A plain value, made of scores with counts. A score is the least threshold above which a message
// is not called spam any more; a message that no rule decides has the score `noScore` and is not
// called spam at any threshold.
#pragma once

#include "rules/vectors/VectorTable.h"

#include <limits>
#include <vector>

namespace Quorvane::Rules {

inline constexpr double noScore = -std::numeric_limits<double>::infinity();

struct ScoredCounts {
    double m_score = noScore;
    LabelCounts m_counts;
};

struct RocPoint {
    // Everything with this score or a higher one is called spam.
    double m_threshold = 0.0;
    LabelCounts m_called;
};

class RocCurve {
  public:
    explicit RocCurve(std::vector<ScoredCounts> scores);

    // From the highest threshold to the lowest, one for each score but noScore.
    std::vector<RocPoint> const& points() const { return m_points; }
    LabelCounts const& total() const { return m_total; }

    // The probability that a spam has a higher score than a ham, ties counting half; 0.5 when one
    // of both is missing.
    double area() const { return m_area; }

    // The point that catches most spam with at most this share of the ham called spam; a threshold
    // beyond all scores and nothing called when there is none.
    RocPoint atFalsePositives(double share) const;

  private:
    std::vector<RocPoint> m_points;
    LabelCounts m_total;
    double m_area = 0.5;
};

} // namespace Quorvane::Rules
