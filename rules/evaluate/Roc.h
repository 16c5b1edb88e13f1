// SPDX-License-Identifier: Apache-2.0
//
// RocCurve: how much spam is caught for how many false positives, at every threshold.
//
// A plain value, made of scores with counts. The score of a message is the highest threshold at
// which it is called spam; a message that no rule decides has the score `noScore` and is not called
// spam at any threshold.
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

    // The probability that a spam message has a higher score than a ham message, with ties counted
    // half; 0.5 when either kind is missing.
    double area() const { return m_area; }

    // The point that catches most spam with at most this share of the ham called spam. If there is
    // none: a threshold above all scores, and nothing called spam.
    RocPoint atFalsePositives(double share) const;

  private:
    std::vector<RocPoint> m_points;
    LabelCounts m_total;
    double m_area = 0.5;
};

} // namespace Quorvane::Rules
