// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/Frame.h"

namespace Quorvane::Charts {

namespace {

constexpr double cap = 3.0;
// Of the distance of two ticks: a label at the end of an axis stands beside its tick.
constexpr double tickRoom = 0.6;

// Labels at the ends of an axis stay within the chart.
Anchor s_anchor(Scale const& scale, double tick) {
    if (scale.at(tick) == scale.to()) {
        return Anchor::end;
    }
    return scale.kind() == Scale::Kind::logarithmic && scale.at(tick) == scale.from()
               ? Anchor::start
               : Anchor::middle;
}

} // namespace

Box Frame::box() const {
    return {m_x.from(), m_y.to(), m_x.to() - m_x.from(), m_y.from() - m_y.to()};
}

void Frame::draw(Drawing& drawing) const {
    auto const plot = box();
    for (double const tick : m_y.ticks()) {
        auto const y = m_y.at(tick);
        drawing.line({plot.m_left, y}, {plot.right(), y}, "grid");
        drawing.text({plot.m_left - 6.0, y + 4.0}, Anchor::end, m_y.label(tick), "tick",
                     plot.m_left - 6.0);
    }
    auto const ticks = m_x.ticks();
    auto const room = tickRoom * plot.m_width / static_cast<double>(ticks.size() - 1);
    for (double const tick : ticks) {
        auto const x = m_x.at(tick);
        drawing.line({x, plot.m_top}, {x, plot.bottom()}, "grid");
        drawing.text({x, plot.bottom() + 16.0}, s_anchor(m_x, tick), m_x.label(tick), "tick", room);
    }
    drawing.line({plot.m_left, plot.bottom()}, {plot.right(), plot.bottom()}, "axis");
    drawing.line({plot.m_left, plot.m_top}, {plot.m_left, plot.bottom()}, "axis");
    drawing.text({0.0, plot.m_top - 12.0}, Anchor::start, m_yName, "axis-name");
    drawing.text({plot.right(), plot.bottom() + 34.0}, Anchor::end, m_xName, "axis-name");
}

void horizontalWhisker(Drawing& drawing, double fromX, double toX, double y) {
    drawing.line({fromX, y}, {toX, y}, "whisker");
    drawing.line({fromX, y - cap}, {fromX, y + cap}, "whisker");
    drawing.line({toX, y - cap}, {toX, y + cap}, "whisker");
}

void verticalWhisker(Drawing& drawing, double x, double fromY, double toY) {
    drawing.line({x, fromY}, {x, toY}, "whisker");
    drawing.line({x - cap, fromY}, {x + cap, fromY}, "whisker");
    drawing.line({x - cap, toY}, {x + cap, toY}, "whisker");
}

} // namespace Quorvane::Charts
