// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/Charts.h"
#include "apps/page/TextWidth.h"
#include "rules/evaluate/FigureText.h"

namespace Quorvane::Charts {

namespace {

constexpr double rowHeight = 40.0;
constexpr double margin = 6.0;
constexpr double axisHeight = 22.0;
constexpr double nameBase = 14.0; // of a name, below the top of its row
constexpr double barMiddle = 26.0;
constexpr double barHeight = 8.0;
// Side by side: the name and "no messages" or a rate.
constexpr double labelRoom = 84.0;
constexpr double tickRoom = 48.0;
constexpr double nameRoom = chartWidth - 3.0 * margin - labelRoom;

void s_drawAxis(Drawing& drawing, Scale const& scale, double height) {
    for (double const tick : scale.ticks()) {
        auto const x = scale.at(tick);
        auto const anchor = x == scale.from() ? Anchor::start
                            : x == scale.to() ? Anchor::end
                                              : Anchor::middle;
        drawing.line({x, 0.0}, {x, height}, "grid");
        drawing.text({x, height + 15.0}, anchor, scale.label(tick), "tick", tickRoom);
    }
    drawing.line({scale.from(), height}, {scale.to(), height}, "axis");
}

void s_drawRate(Drawing& drawing, Scale const& scale, Rules::Rate const& rate, double y,
                std::string const& colour) {
    auto const x = scale.at(rate.value());
    if (scale.kind() == Scale::Kind::linear) {
        drawing.rectangle({scale.from(), y - barHeight / 2.0, x - scale.from(), barHeight},
                          "soft-" + colour);
    }
    drawInterval(drawing, scale, rate, y);
    drawing.dot({x, y}, 4.5, "mark-" + colour, Rules::rateText(rate));
}

} // namespace

std::string rateChart(Caption const& caption, std::vector<NamedRate> const& rates, Scale::Kind kind,
                      std::string_view colour) {
    auto const height = rowHeight * static_cast<double>(rates.size());
    Drawing drawing(chartWidth, height + axisHeight);
    Scale const scale(kind, margin, chartWidth - margin);
    s_drawAxis(drawing, scale, height);
    double top = 0.0;
    for (auto const& [name, rate] : rates) {
        auto const label =
            rate.m_total == 0 ? std::string("no messages") : Rules::percentText(rate.value());
        drawing.text({scale.from(), top + nameBase}, Anchor::start, Page::shortened(name, nameRoom),
                     "name", nameRoom);
        drawing.text({scale.to(), top + nameBase}, Anchor::end, label,
                     rate.m_total == 0 ? "tick" : "value", labelRoom);
        if (rate.m_total != 0) {
            s_drawRate(drawing, scale, rate, top + barMiddle, std::string(colour));
        }
        top += rowHeight;
    }
    return drawing.svg(caption);
}

} // namespace Quorvane::Charts
