// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/Charts.h"
#include "rules/evaluate/FigureText.h"

#include <algorithm>

namespace Quorvane::Charts {

namespace {

constexpr double height = 356.0;
constexpr double plotTop = 26.0;
constexpr double plotBottom = 248.0;
constexpr double plotLeft = 46.0;
constexpr double barsTop = 306.0;
constexpr double barsBottom = 352.0;

// "998", "1.2k", "35k", "1.2M": at most four characters.
std::string s_short(std::uint64_t count) {
    constexpr double thousand = 1000.0;
    constexpr double ten = 10.0;
    auto value = static_cast<double>(count);
    std::string unit;
    for (char const* const next : {"k", "M", "G", "T", "P"}) {
        if (value < thousand) {
            break;
        }
        value /= thousand;
        unit = next;
    }
    return Rules::fixedText(value, unit.empty() || value >= ten ? 0 : 1) + unit;
}

void s_drawBin(Drawing& drawing, Frame const& frame, Rules::ReliabilityBin const& bin) {
    auto const rate = bin.spamRate();
    auto const at = frame.at(bin.meanConfidence(), rate.value());
    frame.drawInterval(drawing, at.m_x, rate);
    drawing.dot(at, 4.5, "mark-accent",
                "mean confidence " + Rules::fixedText(bin.meanConfidence(), 3) + ", spam " +
                    Rules::rateText(rate));
}

// The messages of one tenth, spam above ham, and their number on top.
void s_drawCount(Drawing& drawing, Frame const& frame, std::size_t index,
                 Rules::LabelCounts const& counts, std::uint64_t most) {
    auto const left = frame.m_x.at(Rules::binStart(index)) + 1.0;
    auto const width = frame.m_x.at(Rules::binStart(index + 1)) - left - 1.0;
    auto const scaled = [&](std::uint64_t messages) {
        return (barsBottom - barsTop) * Rules::Rate{messages, most}.value();
    };
    auto const ham = scaled(counts.m_ham);
    auto const spam = scaled(counts.m_spam);
    drawing.rectangle({left, barsBottom - ham, width, ham}, "fill-ham");
    drawing.rectangle({left, barsBottom - ham - spam, width, spam}, "fill-spam");
    drawing.text({left + width / 2.0, barsBottom - ham - spam - 4.0}, Anchor::middle,
                 s_short(counts.total()), "count");
}

} // namespace

std::string reliabilityChart(Caption const& caption, Rules::CorpusFigures const& figures) {
    Frame const frame{{Scale::Kind::confidence, plotLeft, chartWidth - 2.0},
                      {Scale::Kind::linear, plotBottom, plotTop},
                      "confidence",
                      "actual share of spam"};
    Drawing drawing(chartWidth, height);
    frame.draw(drawing);
    drawing.line(frame.at(0.0, 0.0), frame.at(1.0, 1.0), "guide");
    std::uint64_t most = 0;
    for (auto const& bin : figures.m_reliability) {
        most = std::max(most, bin.m_counts.total());
    }
    for (std::size_t i = 0; i < figures.m_reliability.size(); ++i) {
        auto const& bin = figures.m_reliability.at(i);
        if (bin.m_counts.total() != 0) {
            s_drawBin(drawing, frame, bin);
            s_drawCount(drawing, frame, i, bin.m_counts, most);
        }
    }
    drawing.line({plotLeft, barsBottom}, {chartWidth - 2.0, barsBottom}, "axis");
    drawing.text({0.0, barsBottom}, Anchor::start, "mail", "tick");
    return drawing.svg(caption);
}

} // namespace Quorvane::Charts
