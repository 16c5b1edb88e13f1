// SPDX-License-Identifier: Apache-2.0
//
// Scale: where a share from 0 to 1 lies on an axis. A plain value.
#pragma once

#include <string>
#include <vector>

namespace Quorvane::Charts {

class Scale {
  public:
    enum class Kind {
        linear,
        // The same with numbers instead of percentages at its ticks.
        confidence,
        // From leastShown to 1; smaller shares, 0 too, lie at the beginning of the axis.
        logarithmic,
    };
    static constexpr double leastShown = 0.0001;

    // Share 0 (or leastShown) lies at `from`, 1 at `to`; `to` may be the smaller one.
    Scale(Kind kind, double from, double to) : m_kind(kind), m_from(from), m_to(to) {}

    double at(double share) const;

    // Round shares, for lines and labels, in growing order.
    std::vector<double> ticks() const;

    // What to write at a tick: the first of a logarithmic axis stands for all below it.
    std::string label(double tick) const;

    Kind kind() const { return m_kind; }
    double from() const { return m_from; }
    double to() const { return m_to; }

  private:
    Kind m_kind;
    double m_from;
    double m_to;
};

// "0.1 %", "20 %": a round share.
std::string tickText(double share);

} // namespace Quorvane::Charts
