// SPDX-License-Identifier: Apache-2.0
#include "apps/page/Escape.h"
#include "apps/page/TextWidth.h"
#include "apps/show/NodeText.h"
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
constexpr double boxMargin = 8.0;
constexpr double lesserSize = 11.0;
constexpr double titleSize = 20.0;
// At least; of what stands above the tree.
constexpr double headWidth = 900.0;
// A text that would be wider is squeezed down to this part of its width before it is cut.
constexpr double mostSqueezed = 0.8;

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

struct Label {
    double m_x;
    double m_y;
    std::string m_kind;
    std::string m_text;
    double m_room; // to the right
    double m_size = Page::drawnTextSize;
    std::string m_number = {}; // before the text, in bold
};

// Stays within its room in every font. A much longer text is cut; its tooltip has all of it.
std::string s_drawn(Label const& label) {
    auto const before = label.m_number.empty() ? std::string() : label.m_number + ' ';
    auto const text = before + label.m_text;
    auto const shown = Page::shortened(text, label.m_room / mostSqueezed, label.m_size);
    return "<text x=\"" + s_number(label.m_x) + "\" y=\"" + s_number(label.m_y) + '"' +
           (label.m_kind.empty() ? "" : " class=\"" + label.m_kind + '"') +
           Page::fittingAttributes(shown, label.m_room, label.m_size) + '>' +
           (shown == text ? "" : "<title>" + s_text(text) + "</title>") +
           (before.empty() ? "" : "<tspan class=\"number\">" + label.m_number + "</tspan> ") +
           s_text(shown.substr(before.size())) + "</text>\n";
}

// From left to right: a column for each level, a row for each end of the tree, a node in the middle
// of its children.
class SvgWriter {
  public:
    explicit SvgWriter(Drawing const& drawing)
        : m_drawing(drawing), m_rules(drawing.m_rules), m_places(m_rules.m_nodes.size()) {
        place(0);
        m_width = std::max(headWidth, 2 * margin - (columnWidth - boxWidth) +
                                          static_cast<double>(m_columns) * columnWidth);
    }

    std::string write() {
        head();
        auto const& nodes = m_rules.m_nodes;
        for (std::size_t index = 0; index < nodes.size(); ++index) {
            edges(index);
        }
        for (std::size_t index = 0; index < nodes.size(); ++index) {
            box(index);
        }
        auto const height = m_top + m_rows * rowHeight + margin;
        auto const size = s_number(m_width) + "\" height=\"" + s_number(height) +
                          "\" viewBox=\"0 0 " + s_number(m_width) + ' ' + s_number(height);
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
               size + "\" role=\"img\">\n<title>" + s_text(m_rules.m_name) + "</title>\n<style>\n" +
               std::string(shadesStyle()) + std::string(svgStyle()) +
               "</style>\n<rect class=\"paper\" width=\"100%\" height=\"100%\"/>\n" + m_text +
               "</svg>\n";
    }

  private:
    // Rows of a node and of its branches.
    struct Place {
        double m_row = 0.0;
        std::vector<double> m_branchRows;
    };

    // The row of the node. The depth is bounded by the table.
    double place(std::size_t index) { // NOLINT(misc-no-recursion)
        auto const& node = m_rules.m_nodes[index];
        std::vector<double> rows;
        for (auto const& branch : node.m_branches) {
            bool const isBelow = branch.m_kind == ShownBranch::Kind::node;
            rows.push_back(isBelow ? place(branch.m_index) : m_rows++);
        }
        m_columns = std::max(m_columns, node.m_depth + (rows.empty() ? 1 : 2));
        auto const row = rows.empty() ? m_rows++ : (rows.front() + rows.back()) / 2;
        m_places[index] = {row, std::move(rows)};
        return row;
    }

    void head() {
        auto y = margin + 14;
        m_text += s_drawn({margin, y, "title", m_rules.m_name, roomFrom(margin), titleSize});
        y += titleHeight;
        if (m_rules.m_loadProblem) {
            m_text += s_drawn({margin, y, "warn",
                               "No host would load these rules: " + *m_rules.m_loadProblem,
                               roomFrom(margin)});
            y += lineHeight;
        }
        legend(y);
        y += titleHeight;
        for (auto const& line : eliteLines(m_rules)) {
            m_text += s_drawn({margin, y, "", line, roomFrom(margin)});
            y += lineHeight;
        }
        m_top = y + margin / 2;
    }

    void legend(double y) {
        constexpr double start = margin + 72;
        m_text += s_drawn({margin, y, "lesser", "sure of ham", start - margin - 8, lesserSize});
        constexpr double side = 14;
        for (std::size_t shade = 0; shade < shadeCount; ++shade) {
            m_text += "<rect class=\"s" + std::to_string(shade) + "\" x=\"" +
                      s_number(start + side * static_cast<double>(shade)) + "\" y=\"" +
                      s_number(y - 11) + "\" width=\"14\" height=\"14\"/>\n";
        }
        auto const* const measured =
            m_drawing.m_traffic != nullptr ? "the measured mail" : "the training mail";
        constexpr double end = start + side * shadeCount + 8;
        m_text += s_drawn({end, y, "lesser",
                           std::string("sure of spam; the thicker a line, the more of ") +
                               measured + " goes this way",
                           roomFrom(end), lesserSize});
    }

    double roomFrom(double left) const { return m_width - left - margin; }

    double x(std::size_t column) const {
        return margin + static_cast<double>(column) * columnWidth;
    }
    double y(double row) const { return m_top + row * rowHeight + boxHeight / 2; }

    void edges(std::size_t index) {
        auto const& node = m_rules.m_nodes[index];
        for (std::size_t slot = 0; slot < node.m_branches.size(); ++slot) {
            auto const& branch = node.m_branches[slot];
            auto const row = m_places[index].m_branchRows[slot];
            bool const isNode = branch.m_kind == ShownBranch::Kind::node;
            auto const share = isNode ? shareOf(m_drawing, m_rules.m_nodes[branch.m_index]) : 0.0;
            edge(x(node.m_depth) + boxWidth, y(m_places[index].m_row), y(row),
                 isNode ? "edge" : "stray", thinnest + (isNode ? share * thickest : 0.5));
            if (!isNode) {
                auto const left = x(node.m_depth + 1) + 6;
                m_text += s_drawn({left, y(row) + 4, branch.isProblem() ? "warn" : "",
                                   branch.m_text, roomFrom(left)});
            }
        }
    }

    void edge(double left, double fromY, double toY, std::string const& kind, double width) {
        auto const right = left + columnWidth - boxWidth;
        auto const middle = s_number((left + right) / 2) + ' ';
        m_text += "<path class=\"" + kind + "\" d=\"M" + s_number(left) + ' ' + s_number(fromY) +
                  " C" + middle + s_number(fromY) + ' ' + middle + s_number(toY) + ' ' +
                  s_number(right) + ' ' + s_number(toY) + "\" stroke-width=\"" + s_number(width) +
                  "\"/>\n";
    }

    void box(std::size_t index) {
        auto const& node = m_rules.m_nodes[index];
        auto const left = x(node.m_depth);
        auto const top = y(m_places[index].m_row) - boxHeight / 2;
        m_text += std::string("<g class=\"box") + (node.m_problem.empty() ? "" : " problem") +
                  "\"><title>" + s_text(hoverText(node)) + "</title><rect class=\"s" +
                  std::to_string(shadeOf(node.m_record.confidence)) + "\" x=\"" + s_number(left) +
                  "\" y=\"" + s_number(top) + "\" width=\"" + s_number(boxWidth) + "\" height=\"" +
                  s_number(boxHeight) + "\" rx=\"5\"/>\n";
        constexpr double room = boxWidth - 2 * boxMargin;
        m_text += s_drawn({left + boxMargin, top + 16, "", node.m_test.m_test, room,
                           Page::drawnTextSize, std::to_string(node.m_number)});
        m_text +=
            s_drawn({left + boxMargin, top + 31, "lesser",
                     node.m_problem.empty() ? nodeLine(m_drawing, node) : "! " + node.m_problem,
                     room, lesserSize}) +
            "</g>\n";
    }

    std::string hoverText(ShownNode const& node) const {
        auto text = "node " + std::to_string(node.m_number) + ": " + node.m_test.m_sentence + "; " +
                    node.m_test.m_condition + "; " + nodeLine(m_drawing, node);
        auto const counts = countsLine(node);
        text += counts.empty() ? "" : "; " + counts;
        return text + (node.m_problem.empty() ? "" : "; " + node.m_problem);
    }

    Drawing const& m_drawing;
    ShownRules const& m_rules;
    std::vector<Place> m_places; // in the order of the nodes
    std::size_t m_columns = 0;
    double m_rows = 0.0;
    double m_top = 0.0;
    double m_width = 0.0;
    std::string m_text;
};

} // namespace

std::string svgDrawing(Drawing const& drawing) {
    return SvgWriter(drawing).write();
}

} // namespace Quorvane::Show
