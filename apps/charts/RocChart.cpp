// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/Charts.h"
#include "apps/page/TextWidth.h"
#include "rules/evaluate/FigureText.h"

namespace Quorvane::Charts {

namespace {

constexpr double height = 310.0;
constexpr double plotTop = 26.0;
constexpr double plotBottom = 268.0;
constexpr double plotLeft = 46.0;
constexpr double labelGap = 6.0;

struct Rates {
    double m_ham;
    double m_spam;
};

class RocDrawing {
  public:
    RocDrawing(Rules::RocCurve const& curve, Scale::Kind kind)
        : m_curve(curve), m_frame{{kind, plotLeft, chartWidth - 2.0},
                                  {Scale::Kind::linear, plotBottom, plotTop},
                                  "ham called spam",
                                  "spam caught"} {}

    std::string draw(Caption const& caption, RocMarks const& marks) {
        if (m_frame.m_x.kind() == Scale::Kind::logarithmic) {
            shadeUnseen();
            m_frame.draw(m_drawing);
            drawStaircase();
            drawMarks(marks.m_falsePositives);
        } else {
            m_frame.draw(m_drawing);
            drawLines();
        }
        drawThresholds(marks);
        return m_drawing.svg(caption);
    }

  private:
    Rates rates(Rules::LabelCounts const& called) const {
        auto const& total = m_curve.total();
        return {Rules::Rate{called.m_ham, total.m_ham}.value(),
                Rules::Rate{called.m_spam, total.m_spam}.value()};
    }

    // No share between nothing and one message was measured.
    void shadeUnseen() {
        auto const plot = m_frame.box();
        auto const right = m_frame.m_x.at(Rules::Rate{1, m_curve.total().m_ham}.value());
        if (right > plot.m_left) {
            m_drawing.rectangle({plot.m_left, plot.m_top, right - plot.m_left, plot.m_height},
                                "unseen", "less than one message");
        }
    }

    void drawLines() {
        std::vector<Point> points{m_frame.at(0.0, 0.0)};
        for (auto const& point : m_curve.points()) {
            auto const [ham, spam] = rates(point.m_called);
            points.push_back(m_frame.at(ham, spam));
        }
        auto const last = points.back();
        auto outline = points;
        outline.push_back(m_frame.at(1.0, 1.0));
        outline.push_back(m_frame.at(1.0, 0.0));
        m_drawing.area(outline, "under-curve");
        m_drawing.curve({last, m_frame.at(1.0, 1.0)}, "curve undecided");
        m_drawing.curve(points, "curve");
    }

    void drawStaircase() {
        Rates before{0.0, 0.0};
        std::vector<Point> points;
        for (auto const& point : m_curve.points()) {
            auto const now = rates(point.m_called);
            if (now.m_ham > before.m_ham) {
                points.push_back(m_frame.at(before.m_ham, before.m_spam));
                points.push_back(m_frame.at(now.m_ham, before.m_spam));
            }
            before = now;
        }
        points.push_back(m_frame.at(before.m_ham, before.m_spam));
        points.push_back(m_frame.at(1.0, before.m_spam));
        m_drawing.curve(points, "curve");
    }

    void drawMarks(std::vector<double> const& shares) {
        for (double const share : shares) {
            auto const called = m_curve.atFalsePositives(share).m_called;
            Rules::Rate const caught{called.m_spam, m_curve.total().m_spam};
            auto const at = m_frame.at(share, caught.value());
            m_drawing.line({at.m_x, plotBottom}, {at.m_x, plotTop}, "guide");
            m_frame.drawInterval(m_drawing, at.m_x, caught);
            m_drawing.dot(at, 4.0, "mark-accent", Rules::rateText(caught));
            drawMarkLabel(at.m_x, caught,
                          tickText(share) + ": " + Rules::fixedText(100.0 * caught.value(), 1) +
                              " %");
        }
    }

    // Along the guide, above or below the interval, where there is more room.
    void drawMarkLabel(double x, Rules::Rate const& caught, std::string const& text) {
        auto const interval = Rules::wilsonInterval(caught);
        bool const isAbove = interval.m_low + interval.m_high < 1.0;
        auto const length = Page::textWidth(text);
        auto const base = isAbove ? plotTop + length + labelGap : plotBottom - labelGap;
        m_drawing.upwardText({x - 4.0, base}, text, "value", length);
    }

    void drawThresholds(RocMarks const& marks) {
        auto const at = m_frame.at(marks.m_hamCalledSpam.value(), marks.m_spamCalledSpam.value());
        m_frame.drawInterval(m_drawing, at.m_x, marks.m_spamCalledSpam);
        drawInterval(m_drawing, m_frame.m_x, marks.m_hamCalledSpam, at.m_y);
        m_drawing.dot(at, 5.5, "mark-ring", marks.m_name);
        // Named above the plot: beside the ring there are marks, the curve and their labels.
        auto const base = plotTop - 12.0;
        auto const length = Page::textWidth(marks.m_name);
        m_drawing.text({chartWidth - 2.0, base}, Anchor::end, marks.m_name, "name", length);
        m_drawing.dot({chartWidth - 12.0 - length, base - 4.0}, 5.5, "mark-ring");
    }

    Rules::RocCurve const& m_curve;
    Frame m_frame;
    Drawing m_drawing{chartWidth, height};
};

} // namespace

std::string rocChart(Caption const& caption, Rules::RocCurve const& curve, RocMarks const& marks,
                     Scale::Kind kind) {
    return RocDrawing(curve, kind).draw(caption, marks);
}

} // namespace Quorvane::Charts
