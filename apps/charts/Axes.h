// SPDX-License-Identifier: Apache-2.0
//
// The axes of charts of shares. Plain values and pure functions.
#pragma once

#include "apps/charts/Drawing.h"
#include "rules/evaluate/Wilson.h"

#include <string>
#include <vector>

namespace Quorvane::Charts {

// Where a share from 0 to 1 lies on an axis.
class Scale {
  public:
    enum class Kind {
        linear,
        // The same with numbers instead of percentages at its ticks.
        confidence,
        // From leastShown to 1; smaller shares, including 0, lie at the start of the axis.
        logarithmic,
    };
    static constexpr double leastShown = 0.0001;

    // Share 0 (or leastShown) lies at `from`, 1 at `to`; `to` may be the smaller one.
    Scale(Kind kind, double from, double to) : m_kind(kind), m_from(from), m_to(to) {}

    double at(double share) const;

    // Round shares, for lines and labels, in ascending order.
    std::vector<double> ticks() const;

    // What to write at a tick: the first of a logarithmic axis stands for everything below it.
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

// The two axes of a chart, with grid, tick labels and names.
struct Frame {
    Scale m_x;
    Scale m_y;
    std::string m_xName; // below the horizontal axis
    std::string m_yName; // above the vertical axis

    Point at(double x, double y) const { return {m_x.at(x), m_y.at(y)}; }
    Box box() const;
    void draw(Drawing& drawing) const;
    // The interval of a rate as a vertical whisker at the coordinate `x`.
    void drawInterval(Drawing& drawing, double x, Rules::Rate const& rate) const;
};

// The width of every chart: that of a phone's screen, so that text keeps its size there.
inline constexpr double chartWidth = 380.0;

// The interval of a rate as a horizontal whisker at the coordinate `y`.
void drawInterval(Drawing& drawing, Scale const& scale, Rules::Rate const& rate, double y);

} // namespace Quorvane::Charts
