// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/Axes.h"

#include "apps/text/NumberText.h"

#include <algorithm>
#include <cmath>

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

// A line with caps, whose halves reach as far as `half`.
void s_drawWhisker(Drawing& drawing, Point from, Point to, Point half) {
    drawing.line(from, to, "whisker");
    for (auto const& [x, y] : {from, to}) {
        drawing.line({x - half.m_x, y - half.m_y}, {x + half.m_x, y + half.m_y}, "whisker");
    }
}

} // namespace

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

void Frame::drawInterval(Drawing& drawing, double x, Rules::Rate const& rate) const {
    auto const interval = Rules::wilsonInterval(rate);
    s_drawWhisker(drawing, {x, m_y.at(interval.m_low)}, {x, m_y.at(interval.m_high)}, {cap, 0.0});
}

void drawInterval(Drawing& drawing, Scale const& scale, Rules::Rate const& rate, double y) {
    auto const interval = Rules::wilsonInterval(rate);
    s_drawWhisker(drawing, {scale.at(interval.m_low), y}, {scale.at(interval.m_high), y},
                  {0.0, cap});
}

} // namespace Quorvane::Charts
