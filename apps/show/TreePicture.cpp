// SPDX-License-Identifier: Apache-2.0
#include "apps/show/TreePicture.h"

#include "apps/show/SvgText.h"

#include <algorithm>

namespace Quorvane::Show {

namespace {

// Pixels.
constexpr double boxWidth = 262.0;
constexpr double boxHeight = 42.0;
constexpr double columnWidth = boxWidth + 64.0;
constexpr double rowHeight = boxHeight + 8.0;
constexpr double thinnest = 1.0;
constexpr double thickest = 22.0;
constexpr double boxMargin = 8.0;
constexpr double barHeight = 4.0;
constexpr double lesserSize = 11.0;
// At least, for what stands beside a short tree.
constexpr double leastWidth = 852.0;

class PictureWriter {
  public:
    PictureWriter(Drawing const& drawing, Digits digits)
        : m_drawing(drawing), m_rules(drawing.m_rules), m_digits(digits),
          m_places(m_rules.m_nodes.size()) {
        place(0);
        m_width = std::max(leastWidth,
                           static_cast<double>(m_columns) * columnWidth - columnWidth + boxWidth);
    }

    TreePicture write() {
        auto const& nodes = m_rules.m_nodes;
        for (std::size_t index = 0; index < nodes.size(); ++index) {
            edges(index);
        }
        for (std::size_t index = 0; index < nodes.size(); ++index) {
            box(index);
        }
        return {m_width, m_rows * rowHeight, std::move(m_text)};
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

    double x(std::size_t column) const { return static_cast<double>(column) * columnWidth; }
    double y(double row) const { return row * rowHeight + boxHeight / 2; }

    void edges(std::size_t index) {
        auto const& node = m_rules.m_nodes[index];
        for (std::size_t slot = 0; slot < node.m_branches.size(); ++slot) {
            auto const& branch = node.m_branches[slot];
            auto const row = m_places[index].m_branchRows[slot];
            bool const isNode = branch.m_kind == ShownBranch::Kind::node;
            auto const share = isNode ? shareOf(m_drawing, m_rules.m_nodes[branch.m_index]) : 0.0;
            auto const to = " data-to=\"" + std::to_string(branch.m_child) + '"';
            edge(x(node.m_depth) + boxWidth, y(m_places[index].m_row), y(row),
                 isNode ? "edge\"" + to : "stray\"", thinnest + (isNode ? share * thickest : 0.5));
            if (!isNode) {
                auto const left = x(node.m_depth + 1) + 6;
                m_text += svgLabel({left, y(row) + 4, branch.isProblem() ? "warn" : "",
                                    branch.m_text, m_width - left});
            }
        }
    }

    // `attributes`: its class, up to the closing quote, and others.
    void edge(double left, double fromY, double toY, std::string const& attributes, double width) {
        auto const right = left + columnWidth - boxWidth;
        auto const middle = svgNumber((left + right) / 2) + ' ';
        m_text += "<path class=\"" + attributes + " d=\"M" + svgNumber(left) + ' ' +
                  svgNumber(fromY) + " C" + middle + svgNumber(fromY) + ' ' + middle +
                  svgNumber(toY) + ' ' + svgNumber(right) + ' ' + svgNumber(toY) +
                  "\" stroke-width=\"" + svgNumber(width) + "\"/>\n";
    }

    void box(std::size_t index) {
        auto const& node = m_rules.m_nodes[index];
        auto const left = x(node.m_depth);
        auto const top = y(m_places[index].m_row) - boxHeight / 2;
        m_text += std::string("<g class=\"box") + (node.m_problem.empty() ? "" : " problem") +
                  "\" data-node=\"" + std::to_string(node.m_number) + "\"><title>" +
                  svgText(hoverText(node)) + "</title><rect class=\"s" +
                  std::to_string(shadeOf(node.m_record.confidence)) + "\" x=\"" + svgNumber(left) +
                  "\" y=\"" + svgNumber(top) + "\" width=\"" + svgNumber(boxWidth) +
                  "\" height=\"" + svgNumber(boxHeight) + "\" rx=\"5\"/>\n";
        constexpr double room = boxWidth - 2 * boxMargin;
        m_text += svgLabel({left + boxMargin, top + 16, "", node.m_test.m_test, room,
                            Page::drawnTextSize, std::to_string(node.m_number)});
        m_text += svgLabel({left + boxMargin, top + 31, "lesser",
                            node.m_problem.empty() ? nodeLine(m_drawing, node, m_digits)
                                                   : "! " + node.m_problem,
                            room, lesserSize}) +
                  bar(node, left + boxMargin, top + boxHeight - barHeight - 3) + "</g>\n";
    }

    static std::string bar(ShownNode const& node, double left, double top) {
        auto const spam = trainingSpam(node);
        if (!spam) {
            return {};
        }
        constexpr double width = boxWidth - 2 * boxMargin;
        auto const part = [top](char const* kind, double from, double size) {
            return std::string("<rect class=\"") + kind + "\" x=\"" + svgNumber(from) + "\" y=\"" +
                   svgNumber(top) + "\" width=\"" + svgNumber(size) + "\" height=\"" +
                   svgNumber(barHeight) + "\"/>\n";
        };
        return part("mail-spam", left, *spam * width) +
               part("mail-ham", left + *spam * width, (1.0 - *spam) * width);
    }

    std::string hoverText(ShownNode const& node) const {
        auto text = "node " + std::to_string(node.m_number) + ": " + node.m_test.m_sentence + "; " +
                    node.m_test.m_condition + "; " + nodeLine(m_drawing, node, m_digits);
        auto const counts = countsLine(node);
        text += counts.empty() ? "" : "; " + counts;
        return text + (node.m_problem.empty() ? "" : "; " + node.m_problem);
    }

    Drawing const& m_drawing;
    ShownRules const& m_rules;
    Digits m_digits;
    std::vector<Place> m_places; // in the order of the nodes
    std::size_t m_columns = 0;
    double m_rows = 0.0;
    double m_width = 0.0;
    std::string m_text;
};

} // namespace

TreePicture treePicture(Drawing const& drawing, Digits digits) {
    return PictureWriter(drawing, digits).write();
}

} // namespace Quorvane::Show
