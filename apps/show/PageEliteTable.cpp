// SPDX-License-Identifier: Apache-2.0
#include "apps/page/Escape.h"
#include "apps/show/NodeText.h"
#include "apps/show/Page.h"

#include <array>

namespace Quorvane::Show {

namespace {

std::string s_cell(std::string const& kind, std::string const& html) {
    return "<td class=\"" + kind + "\">" + html + "</td>";
}

std::string s_conditions(ShownElite const& rule) {
    std::string items;
    for (auto const& test : rule.m_tests) {
        items += "<li>" + Page::text(test.m_sentence) + " <code>" + Page::text(test.m_condition) +
                 "</code></li>";
    }
    return items.empty() ? "always" : "<ul>" + items + "</ul>";
}

// The heading stands before the number where there is no room for columns.
std::string s_figures(ShownElite const& rule, Traffic const* traffic) {
    constexpr std::array headings{"support", "level", "fired", "decided"};
    std::string cells;
    std::size_t column = 0;
    for (auto const& figure : eliteFigures(rule, traffic)) {
        cells += std::string("<td class=\"number\" data-name=\"") + headings.at(column++) + "\">" +
                 figure + "</td>";
    }
    return cells;
}

std::string s_row(ShownElite const& rule, Traffic const* traffic) {
    auto const place = rule.m_place ? " id=\"elite-" + std::to_string(*rule.m_place) +
                                          "\" data-place=\"" + std::to_string(*rule.m_place) + '"'
                                    : std::string(" class=\"dropped\"");
    // Without its quotes a letter is what a reader searches for.
    auto const code = rule.m_code.size() == 3 && rule.m_code.front() == '\''
                          ? rule.m_code.substr(1, 1)
                          : rule.m_code;
    return "<tr" + place + " data-code=\"" + Page::text(code) +
           "\"><th scope=\"row\" class=\"code\">" + Page::text(rule.m_code) + "</th>" +
           s_cell("effect", Page::text(rule.m_effect)) + s_cell("when", s_conditions(rule)) +
           s_figures(rule, traffic) + "</tr>\n";
}

} // namespace

std::string pageEliteTable(Drawing const& drawing) {
    auto const& rules = drawing.m_rules;
    if (rules.m_elite.empty()) {
        return "<p>There are no elite rules.</p>\n";
    }
    std::string html = "<p>Elite rules are tested before the tree. ";
    html += rules.m_eliteHeader ? selectModeText(*rules.m_eliteHeader) : "";
    html += "</p>\n<div class=\"scroll\" role=\"region\" aria-label=\"Elite rules\" tabindex=\"0\">"
            "<table id=\"elite\">\n<thead><tr><th>Rule</th><th>Does</th><th>When all of this "
            "holds</th><th class=\"number\">Support</th><th class=\"number\">Level</th>";
    html += drawing.m_traffic != nullptr
                ? "<th class=\"number\">Fired</th><th class=\"number\">Decided</th>"
                : "";
    html += "</tr></thead>\n<tbody>\n";
    for (auto const& rule : rules.m_elite) {
        html += s_row(rule, drawing.m_traffic);
    }
    return html + "</tbody>\n</table></div>\n";
}

} // namespace Quorvane::Show
