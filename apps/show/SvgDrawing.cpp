// SPDX-License-Identifier: Apache-2.0
#include "apps/page/Escape.h"
#include "apps/show/Assets.h"
#include "apps/show/Drawings.h"
#include "apps/show/NodeText.h"
#include "apps/show/Shades.h"
#include "apps/show/SvgLayout.h"
#include "rules/evaluate/FigureText.h"

#include <algorithm>

namespace Quorvane::Show {

namespace {

// Pixels.
constexpr double margin = 24.0;
constexpr double boxWidth = 262.0;
constexpr double boxHeight = 38.0;
constexpr double columnWidth = boxWidth + 64.0;
constexpr double rowHeight = boxHeight + 8.0;
constexpr double lineHeight = 18.0;
constexpr double titleHeight = 30.0;
constexpr double thinnest = 1.0;
constexpr double thickest = 22.0;
// More rules than this are no table any more.
constexpr std::size_t shownElite = 60;
// Characters that fit.
constexpr std::size_t testLength = 40;
constexpr std::size_t eliteLength = 150;

std::string s_number(double number) {
    return Rules::fixedText(number, 1);
}

// U+FFFE and U+FFFF are characters that XML cannot hold.
std::string s_text(std::string text) {
    for (auto const* const last : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
        for (auto at = text.find(last); at != std::string::npos; at = text.find(last)) {
            text.replace(at, 3, "?");
        }
    }
    return Page::text(text);
}

std::string s_cut(std::string const& text, std::size_t length) {
    return text.size() <= length ? text : text.substr(0, length - 3) + "...";
}

std::string s_textAt(double x, double y, std::string const& kind, std::string const& text) {
    return "<text x=\"" + s_number(x) + "\" y=\"" + s_number(y) + '"' +
           (kind.empty() ? "" : " class=\"" + kind + '"') + '>' + text + "</text>\n";
}

class SvgWriter {
  public:
    explicit SvgWriter(Drawing const& drawing)
        : m_drawing(drawing), m_rules(drawing.m_rules), m_layout(svgLayout(drawing.m_rules)) {}

    std::string write() {
        head();
        auto const& nodes = m_rules.m_nodes;
        for (std::size_t index = 0; index < nodes.size(); ++index) {
            edges(index);
        }
        for (std::size_t index = 0; index < nodes.size(); ++index) {
            box(index);
        }
        auto const width = 2 * margin + static_cast<double>(m_layout.m_columns) * columnWidth -
                           (columnWidth - boxWidth);
        auto const height = m_top + static_cast<double>(m_layout.m_rows) * rowHeight + margin;
        auto const size = s_number(std::max(width, m_headWidth)) + "\" height=\"" +
                          s_number(height) + "\" viewBox=\"0 0 " +
                          s_number(std::max(width, m_headWidth)) + ' ' + s_number(height);
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
               size + "\" role=\"img\">\n<title>" + s_text(m_rules.m_name) + "</title>\n<style>\n" +
               std::string(shadesStyle()) + std::string(svgStyle()) +
               "</style>\n<rect class=\"paper\" width=\"100%\" height=\"100%\"/>\n" + m_text +
               "</svg>\n";
    }

  private:
    void head() {
        auto y = margin + 14;
        m_text += s_textAt(margin, y, "title", s_text(m_rules.m_name));
        y += titleHeight;
        if (m_rules.m_loadProblem) {
            m_text += s_textAt(margin, y, "warn",
                               "No host would load these rules: " + s_text(*m_rules.m_loadProblem));
            y += lineHeight;
        }
        legend(y);
        y += titleHeight;
        auto const count = std::min(m_rules.m_elite.size(), shownElite);
        for (std::size_t i = 0; i < count; ++i) {
            elite(m_rules.m_elite[i], y);
            y += lineHeight;
        }
        if (count < m_rules.m_elite.size()) {
            m_text += s_textAt(margin, y, "lesser",
                               "and " + std::to_string(m_rules.m_elite.size() - count) +
                                   " more elite rules");
            y += lineHeight;
        }
        m_top = y + margin / 2;
    }

    void legend(double y) {
        m_text += s_textAt(margin, y, "lesser", "sure of ham");
        constexpr double start = margin + 72;
        constexpr double side = 14;
        for (std::size_t shade = 0; shade < shadeCount; ++shade) {
            m_text += "<rect class=\"s" + std::to_string(shade) + "\" x=\"" +
                      s_number(start + side * static_cast<double>(shade)) + "\" y=\"" +
                      s_number(y - 11) + "\" width=\"14\" height=\"14\"/>\n";
        }
        auto const* const measured =
            m_drawing.m_traffic != nullptr ? "the measured mail" : "the training mail";
        m_text += s_textAt(start + side * shadeCount + 8, y, "lesser",
                           std::string("sure of spam; the thicker a line, the more of ") +
                               measured + " comes this way");
    }

    void elite(ShownElite const& rule, double y) {
        auto const line = eliteLine(rule);
        m_text += "<g><title>" + s_text(line) + "</title>" +
                  s_textAt(margin, y, rule.m_place ? "" : "warn",
                           "elite rule " + s_text(s_cut(line, eliteLength))) +
                  "</g>\n";
    }

    double x(std::size_t column) const {
        return margin + static_cast<double>(column) * columnWidth;
    }
    double y(double row) const { return m_top + row * rowHeight + boxHeight / 2; }

    void edges(std::size_t index) {
        auto const& node = m_rules.m_nodes[index];
        auto const& place = m_layout.m_places[index];
        for (std::size_t slot = 0; slot < node.m_branches.size(); ++slot) {
            auto const& branch = node.m_branches[slot];
            bool const isNode = branch.m_kind == ShownBranch::Kind::node;
            auto const share = isNode ? shareOf(m_drawing, m_rules.m_nodes[branch.m_index]) : 0.0;
            edge(place, place.m_slotRows[slot], isNode, share);
            if (!isNode) {
                stub(place, place.m_slotRows[slot], branch);
            }
        }
    }

    void edge(SvgLayout::Place const& place, double row, bool isNode, double share) {
        auto const from = x(place.m_column) + boxWidth;
        auto const to = x(place.m_column + 1);
        auto const middle = (from + to) / 2;
        m_text += std::string("<path class=\"") + (isNode ? "edge" : "stray") + "\" d=\"M" +
                  s_number(from) + ' ' + s_number(y(place.m_row)) + " C" + s_number(middle) + ' ' +
                  s_number(y(place.m_row)) + ' ' + s_number(middle) + ' ' + s_number(y(row)) + ' ' +
                  s_number(to) + ' ' + s_number(y(row)) + "\" stroke-width=\"" +
                  s_number(thinnest + (isNode ? share * thickest : 0.5)) + "\"/>\n";
    }

    // The end of a branch that is no node below this one.
    void stub(SvgLayout::Place const& place, double row, ShownBranch const& branch) {
        auto const number = std::to_string(branch.m_child);
        auto const text = branch.m_kind == ShownBranch::Kind::end ? branch.m_problem
                          : branch.m_kind == ShownBranch::Kind::circle
                              ? "back to node " + number + ": the walk can go in circles"
                              : "node " + number + ", which stands elsewhere";
        bool const isHarmless = branch.m_kind == ShownBranch::Kind::elsewhere;
        m_text +=
            s_textAt(x(place.m_column + 1) + 6, y(row) + 4, isHarmless ? "" : "warn", s_text(text));
    }

    void box(std::size_t index) {
        auto const& node = m_rules.m_nodes[index];
        auto const left = x(m_layout.m_places[index].m_column);
        auto const top = y(m_layout.m_places[index].m_row) - boxHeight / 2;
        m_text += std::string("<g class=\"box") + (node.m_problem.empty() ? "" : " problem") +
                  "\"><title>" + s_text(hoverText(node)) + "</title><rect class=\"s" +
                  std::to_string(shadeOf(node.m_record.confidence)) + "\" x=\"" + s_number(left) +
                  "\" y=\"" + s_number(top) + "\" width=\"" + s_number(boxWidth) + "\" height=\"" +
                  s_number(boxHeight) + "\" rx=\"5\"/>\n";
        m_text += s_textAt(left + 8, top + 16, "",
                           "<tspan class=\"number\">" + std::to_string(node.m_number) +
                               "</tspan> " + s_text(s_cut(node.m_test, testLength)));
        m_text += s_textAt(left + 8, top + 31, "lesser",
                           s_text(node.m_problem.empty() ? nodeLine(m_drawing, node)
                                                         : "! " + node.m_problem)) +
                  "</g>\n";
    }

    std::string hoverText(ShownNode const& node) const {
        auto text = "node " + std::to_string(node.m_number) + ": " + node.m_sentence + "; " +
                    node.m_condition + "; " + nodeLine(m_drawing, node);
        auto const counts = countsLine(node);
        text += counts.empty() ? "" : "; " + counts;
        return text + (node.m_problem.empty() ? "" : "; " + node.m_problem);
    }

    Drawing const& m_drawing;
    ShownRules const& m_rules;
    SvgLayout m_layout;
    double m_top = 0.0;
    double m_headWidth = 900.0;
    std::string m_text;
};

} // namespace

std::string svgDrawing(Drawing const& drawing) {
    return SvgWriter(drawing).write();
}

} // namespace Quorvane::Show
