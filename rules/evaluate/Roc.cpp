// SPDX-License-Identifier: Apache-2.0
#include "rules/evaluate/Roc.h"

#include <algorithm>

namespace Quorvane::Rules {

namespace {

double s_pairs(std::uint64_t a, std::uint64_t b) {
    return static_cast<double>(a) * static_cast<double>(b);
}

} // namespace

RocCurve::RocCurve(std::vector<ScoredCounts> scores) {
    std::sort(scores.begin(), scores.end(),
              [](auto const& a, auto const& b) { return a.m_score > b.m_score; });
    double won = 0.0; // pairs of a spam and a ham in the right order
    std::size_t next = 0;
    while (next < scores.size()) {
        auto const score = scores[next].m_score;
        LabelCounts same;
        for (; next < scores.size() && scores[next].m_score == score; ++next) {
            same += scores[next].m_counts;
        }
        won += s_pairs(m_total.m_spam, same.m_ham) + s_pairs(same.m_spam, same.m_ham) / 2.0;
        m_total += same;
        if (score != noScore) {
            m_points.push_back({score, m_total});
        }
    }
    if (m_total.m_spam > 0 && m_total.m_ham > 0) {
        m_area = won / s_pairs(m_total.m_spam, m_total.m_ham);
    }
}

RocPoint RocCurve::atFalsePositives(double share) const {
    RocPoint best{std::numeric_limits<double>::infinity(), {}};
    for (auto const& point : m_points) {
        if (static_cast<double>(point.m_called.m_ham) >
            share * static_cast<double>(m_total.m_ham)) {
            break;
        }
        best = point;
    }
    return best;
}

} // namespace Quorvane::Rules
