// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/Scale.h"

#include "apps/text/NumberText.h"

#include <algorithm>
#include <cmath>

namespace Quorvane::Charts {

double Scale::at(double share) const {
    double part = std::clamp(share, 0.0, 1.0);
    if (m_kind == Kind::logarithmic) {
        part = 1.0 - std::log10(std::max(part, leastShown)) / std::log10(leastShown);
    }
    return m_from + part * (m_to - m_from);
}

std::vector<double> Scale::ticks() const {
    if (m_kind == Kind::logarithmic) {
        return {0.0001, 0.001, 0.01, 0.1, 1.0};
    }
    return {0.0, 0.2, 0.4, 0.6, 0.8, 1.0};
}

std::string Scale::label(double tick) const {
    if (m_kind == Kind::confidence) {
        return numberText(tick);
    }
    bool const isLeast = m_kind == Kind::logarithmic && tick == leastShown;
    return (isLeast ? "\xE2\x89\xA4 " : "") + tickText(tick);
}

std::string tickText(double share) {
    return numberText(100.0 * share) + " %";
}

} // namespace Quorvane::Charts
