// SPDX-License-Identifier: Apache-2.0
#include "apps/show/Drawings.h"
#include "apps/text/NumberText.h"
#include "apps/text/Utf8.h"

namespace Quorvane::Show {

namespace {

std::string s_lines(std::string const& text, TextStyle const& style) {
    std::string lines;
    for (auto const& line : wrapped(text, style.m_width)) {
        lines += line + '\n';
    }
    return lines;
}

std::string s_plural(std::size_t count, std::string const& one, std::string const& many) {
    return groupedText(count) + ' ' + (count == 1 ? one : many);
}

// "starter.qvr: version 1, 8 elite rules, 17 nodes (10 leaves), 4 deep"
std::string s_summary(ShownRules const& rules, TextStyle const& style) {
    auto text = toPrintable(rules.m_name) + ": ";
    text += rules.m_version ? "version " + std::to_string(*rules.m_version) : "no version";
    text += ", " + s_plural(rules.m_elite.size(), "elite rule", "elite rules") + ", " +
            s_plural(rules.m_nodes.size(), "node", "nodes") + " (" +
            s_plural(rules.leafCount(), "leaf", "leaves") + "), " + std::to_string(rules.depth()) +
            " deep";
    auto const problem =
        rules.m_loadProblem
            ? s_lines("No host would load these rules: " + *rules.m_loadProblem, style)
            : "";
    return s_lines(text, style) + problem;
}

std::string s_measured(Traffic const* traffic, TextStyle const& style) {
    if (traffic == nullptr) {
        return {};
    }
    return s_lines("Measured on " + groupedText(traffic->m_messages) +
                       " messages; no rule decided " + groupedText(traffic->m_undecided) +
                       " of them; " + groupedText(traffic->m_notJudgeable) +
                       " more have no public hop to judge.",
                   style);
}

std::string s_unreached(ShownRules const& rules, TextStyle const& style) {
    if (rules.m_unreached.empty()) {
        return {};
    }
    std::string text = "Nodes that no message can come to:";
    for (auto const number : rules.m_unreached) {
        text += ' ' + std::to_string(number);
    }
    return '\n' + s_lines(text, style);
}

} // namespace

std::string textDrawing(Drawing const& drawing, TextStyle const& style) {
    return s_summary(drawing.m_rules, style) + s_measured(drawing.m_traffic, style) + '\n' +
           eliteTable(drawing, style) + '\n' +
           s_lines("Tree. Spam: the probability that the node gives.", style) +
           textTree(drawing, style) + s_unreached(drawing.m_rules, style);
}

} // namespace Quorvane::Show
