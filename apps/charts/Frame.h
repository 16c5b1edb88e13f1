// SPDX-License-Identifier: Apache-2.0
//
// Frame: the axes of a chart of two shares, with grid, tick labels and names. A plain value.
#pragma once

#include "apps/charts/Drawing.h"
#include "apps/charts/Scale.h"

#include <string>

namespace Quorvane::Charts {

struct Frame {
    Scale m_x;
    Scale m_y;
    std::string m_xName; // below the horizontal axis
    std::string m_yName; // above the vertical axis

    Point at(double x, double y) const { return {m_x.at(x), m_y.at(y)}; }
    Box box() const;
    void draw(Drawing& drawing) const;
};

// The width of every chart: that of a phone's screen, so that text keeps its size there.
inline constexpr double chartWidth = 380.0;

// A whisker from one share to another with caps, along an axis.
void horizontalWhisker(Drawing& drawing, double fromX, double toX, double y);
void verticalWhisker(Drawing& drawing, double x, double fromY, double toY);

} // namespace Quorvane::Charts
