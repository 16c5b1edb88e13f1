// SPDX-License-Identifier: Apache-2.0
#include "rules/learn/Impurity.h"

#include <cmath>

namespace Quorvane::Rules {

namespace {

double s_timesLog(double count) {
    return count > 0.0 ? count * std::log2(count) : 0.0;
}

} // namespace

double summedImpurity(ImpurityKind kind, LabelCounts const& counts) {
    if (counts.m_spam == 0 || counts.m_ham == 0) {
        return 0.0;
    }
    auto const spam = static_cast<double>(counts.m_spam);
    auto const ham = static_cast<double>(counts.m_ham);
    auto const total = static_cast<double>(counts.total());
    if (kind == ImpurityKind::gini) {
        return 2.0 * (spam / total) * ham;
    }
    return s_timesLog(total) - (s_timesLog(spam) + s_timesLog(ham));
}

double smoothedConfidence(LabelCounts const& counts) {
    return (static_cast<double>(counts.m_spam) + 1.0) / (static_cast<double>(counts.total()) + 2.0);
}

} // namespace Quorvane::Rules
