// SPDX-License-Identifier: Apache-2.0
#include "apps/show/NodeText.h"
#include "apps/text/NumberText.h"
#include "apps/text/Utf8.h"

namespace Quorvane::Show {

namespace {

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
            ? wrappedText("No host would load these rules: " + *rules.m_loadProblem, style)
            : "";
    return wrappedText(text, style) + problem;
}

std::string s_measured(Traffic const& traffic, TextStyle const& style) {
    return wrappedText("Measured on " + groupedText(traffic.m_messages) +
                           " messages; no rule decided " + groupedText(traffic.m_undecided) +
                           " of them; " + groupedText(traffic.m_notJudgeable) +
                           " more have no public hop to judge.",
                       style);
}

} // namespace

std::string textDrawing(Drawing const& drawing, TextStyle const& style) {
    auto const unreached = unreachedText(drawing.m_rules);
    return s_summary(drawing.m_rules, style) +
           (drawing.m_traffic != nullptr ? s_measured(*drawing.m_traffic, style) : "") + '\n' +
           eliteTable(drawing, style) + '\n' +
           wrappedText("Tree. Spam: the probability that the node gives.", style) +
           textTree(drawing, style) +
           (unreached.empty() ? "" : '\n' + wrappedText(unreached, style));
}

} // namespace Quorvane::Show
