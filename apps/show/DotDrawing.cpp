// SPDX-License-Identifier: Apache-2.0
#include "apps/show/NodeText.h"
#include "apps/text/Utf8.h"
#include "rules/evaluate/FigureText.h"

#include <array>

namespace Quorvane::Show {

namespace {

constexpr std::array<char const*, shadeCount> fills{"#9ecae9", "#c3def2", "#e0edf6", "#eeeeee",
                                                    "#fbe6d4", "#f9cba6", "#f5a668"};

// A quoted string of the language. A backslash begins an escape there, "&" a character entity.
std::string s_quoted(std::string const& text) {
    std::string quoted = "\"";
    for (char const c : toPrintable(text)) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
        }
        quoted += c == '&' ? "&amp;" : std::string(1, c);
    }
    return quoted + '"';
}

// A label of several lines, each ended by "\n", which centres it, or "\l", which does not.
std::string s_label(std::vector<std::string> const& lines, char const* end) {
    std::string label = "\"";
    for (auto const& line : lines) {
        auto const quoted = s_quoted(line);
        label += quoted.substr(1, quoted.size() - 2) + end;
    }
    return label + '"';
}

std::string s_id(std::int32_t number) {
    return "n" + std::to_string(number);
}

class DotWriter {
  public:
    explicit DotWriter(Drawing const& drawing) : m_drawing(drawing) {}

    std::string write() {
        m_text = "digraph rules {\n"
                 "    graph [rankdir=LR, ranksep=0.6, nodesep=0.12, fontname=\"Helvetica\", "
                 "fontsize=11, labelloc=t, labeljust=l, tooltip=\" \", label=" +
                 s_label(headLines(), "\\l") +
                 "];\n"
                 "    node [shape=box, style=\"rounded,filled\", fillcolor=\"#eeeeee\", "
                 "color=\"#6b7480\", fontname=\"Helvetica\", fontsize=10, margin=\"0.12,0.05\"];\n"
                 "    edge [color=\"#6b7480\", arrowhead=none];\n";
        for (auto const& node : m_drawing.m_rules.m_nodes) {
            this->node(node);
        }
        return m_text + "}\n";
    }

  private:
    // The elite rules stand above the tree, since they are tested before it.
    std::vector<std::string> headLines() const {
        auto lines = eliteLines(m_drawing.m_rules);
        lines.insert(lines.begin(), m_drawing.m_rules.m_name);
        return lines;
    }

    void node(ShownNode const& node) {
        auto lines = std::vector<std::string>{
            std::to_string(node.m_number) + ": " + node.m_test.m_test, nodeLine(m_drawing, node)};
        if (node.isCounted()) {
            lines.push_back(countsLine(node));
        }
        if (!node.m_problem.empty()) {
            lines.push_back("! " + node.m_problem);
        }
        m_text += "    " + s_id(node.m_number) + " [label=" + s_label(lines, "\\n") +
                  ", tooltip=" + s_quoted(node.m_test.m_sentence) + ", fillcolor=\"" +
                  fills.at(shadeOf(node.m_record.confidence)) + '"' +
                  (node.m_problem.empty() ? "" : ", color=\"#b04600\", penwidth=2") + "];\n";
        for (std::size_t slot = 0; slot < node.m_branches.size(); ++slot) {
            branch(node, slot);
        }
    }

    void branch(ShownNode const& node, std::size_t slot) {
        auto const& branch = node.m_branches[slot];
        auto const from = "    " + s_id(node.m_number) + " -> ";
        switch (branch.m_kind) {
        case ShownBranch::Kind::node:
        case ShownBranch::Kind::elsewhere:
            m_text += from + s_id(branch.m_child) + " [penwidth=" + width(branch) + "];\n";
            break;
        case ShownBranch::Kind::circle:
            m_text += from + s_id(branch.m_child) +
                      " [style=dashed, color=\"#b04600\", constraint=false, arrowhead=normal];\n";
            break;
        case ShownBranch::Kind::end: {
            auto const id = "end" + std::to_string(node.m_number) + "_" + std::to_string(slot);
            m_text += "    " + id + " [shape=plaintext, style=\"\", fontcolor=\"#b04600\", label=" +
                      s_quoted("! " + branch.m_text) + "];\n" + from + id +
                      " [style=dashed, color=\"#b04600\"];\n";
            break;
        }
        }
    }

    std::string width(ShownBranch const& branch) const {
        constexpr double thickest = 12.0;
        auto const share = shareOf(m_drawing, m_drawing.m_rules.m_nodes[branch.m_index]);
        return Rules::fixedText(0.5 + thickest * share, 2);
    }

    Drawing const& m_drawing;
    std::string m_text;
};

} // namespace

std::string dotDrawing(Drawing const& drawing) {
    return DotWriter(drawing).write();
}

} // namespace Quorvane::Show
