// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/Charts.h"
#include "apps/page/TextWidth.h"
#include "apps/text/NumberText.h"
#include "rules/evaluate/FigureText.h"

#include <algorithm>
#include <array>

namespace Quorvane::Charts {

namespace {

constexpr double margin = 1.0;
constexpr double headHeight = 22.0; // of the names of the verdicts
constexpr double rowHeight = 58.0;
constexpr double barTop = 22.0; // below the top of its row
constexpr double barHeight = 26.0;
// A few messages among thousands must not vanish.
constexpr double leastWidth = 1.5;

struct Segment {
    char const* m_class;
    char const* m_name;
    std::uint64_t m_count;
};

void s_drawHead(Drawing& drawing) {
    drawing.text({margin, 12.0}, Anchor::start, "called spam", "key-spam");
    drawing.text({chartWidth / 2.0, 12.0}, Anchor::middle, "no verdict", "key-none");
    drawing.text({chartWidth - margin, 12.0}, Anchor::end, "called ham", "key-ham");
}

void s_drawBar(Drawing& drawing, Rules::VerdictCounts const& counts, double top) {
    Scale const scale(Scale::Kind::linear, margin, chartWidth - margin);
    std::uint64_t before = 0;
    for (auto const& segment : std::array<Segment, 3>{{{"spam", "called spam", counts.m_spam},
                                                       {"none", "no verdict", counts.m_none},
                                                       {"ham", "called ham", counts.m_ham}}}) {
        if (segment.m_count == 0) {
            continue;
        }
        auto const left = scale.at(Rules::Rate{before, counts.total()}.value());
        before += segment.m_count;
        auto const right =
            std::max(scale.at(Rules::Rate{before, counts.total()}.value()), left + leastWidth);
        auto const share = Rules::percentText(Rules::Rate{segment.m_count, counts.total()}.value());
        drawing.rectangle({left, top, right - left, barHeight},
                          std::string("fill-") + segment.m_class,
                          std::string(segment.m_name) + ": " + share);
        auto const room = right - left - 2.0 * margin;
        if (Page::textWidth(share) < room) {
            drawing.text({(left + right) / 2.0, top + 17.0}, Anchor::middle, share, "on-fill",
                         room);
        }
    }
}

void s_drawRow(Drawing& drawing, std::string const& label, Rules::VerdictCounts const& counts,
               double top) {
    drawing.text({margin, top + 16.0}, Anchor::start, label + ", " + groupedText(counts.total()),
                 "name");
    if (counts.total() == 0) {
        drawing.rectangle({margin, top + barTop, chartWidth - 2.0 * margin, barHeight}, "missing");
        return;
    }
    s_drawBar(drawing, counts, top + barTop);
}

} // namespace

std::string verdictChart(Caption const& caption, std::vector<NamedVerdicts> const& rows) {
    Drawing drawing(chartWidth, headHeight + rowHeight * static_cast<double>(rows.size()));
    s_drawHead(drawing);
    double top = headHeight;
    for (auto const& [name, counts] : rows) {
        s_drawRow(drawing, name, counts, top);
        top += rowHeight;
    }
    return drawing.svg(caption);
}

std::string deciderBar(Rules::LabelCounts const& counts, std::uint64_t most) {
    constexpr double width = 320.0;
    constexpr double height = 8.0;
    auto const spam = width * Rules::Rate{counts.m_spam, most}.value();
    auto const ham = width * Rules::Rate{counts.m_ham, most}.value();
    Drawing drawing(width, height);
    drawing.rectangle({0.0, 0.0, spam, height}, "fill-spam");
    drawing.rectangle({spam, 0.0, ham, height}, "fill-ham");
    return drawing.decoration("bar");
}

} // namespace Quorvane::Charts
