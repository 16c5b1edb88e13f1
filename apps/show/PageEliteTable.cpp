// SPDX-License-Identifier: Apache-2.0
#include "apps/page/Escape.h"
#include "apps/show/Numbers.h"
#include "apps/show/Page.h"

namespace Quorvane::Show {

namespace {

std::string s_cell(std::string const& kind, std::string const& html) {
    return "<td class=\"" + kind + "\">" + html + "</td>";
}

// `name` stands before the number where there is no room for columns.
std::string s_figure(std::string const& name, std::string const& text) {
    return "<td class=\"number\" data-name=\"" + name + "\">" + text + "</td>";
}

std::string s_conditions(ShownElite const& rule) {
    if (rule.m_conditions.empty()) {
        return "always";
    }
    std::string html = "<ul>";
    for (std::size_t i = 0; i < rule.m_conditions.size(); ++i) {
        html += "<li>" + Page::text(rule.m_sentences[i]) + " <code>" +
                Page::text(rule.m_conditions[i]) + "</code></li>";
    }
    return html + "</ul>";
}

std::string s_measured(ShownElite const& rule, Traffic const* traffic) {
    if (traffic == nullptr) {
        return {};
    }
    auto const use = rule.m_place ? traffic->elite(*rule.m_place) : Traffic::Use{};
    auto const decided = rule.m_rule.type == EliteType::deciding
                             ? percentText(traffic->share(use.m_decided))
                             : std::string();
    return s_cell("number", percentText(traffic->share(use.m_reached))) + s_cell("number", decided);
}

std::string s_row(ShownElite const& rule, Traffic const* traffic) {
    bool const isDeciding = rule.m_rule.type == EliteType::deciding;
    auto const place = rule.m_place ? " id=\"elite-" + std::to_string(*rule.m_place) +
                                          "\" data-place=\"" + std::to_string(*rule.m_place) + '"'
                                    : std::string(" class=\"dropped\"");
    // Without its quotes a letter is what a reader searches for.
    auto const code = rule.m_code.size() == 3 && rule.m_code.front() == '\''
                          ? rule.m_code.substr(1, 1)
                          : rule.m_code;
    return "<tr" + place + " data-code=\"" + Page::text(code) +
           "\"><th scope=\"row\" class=\"code\">" + Page::text(rule.m_code) + "</th>" +
           s_cell("effect", Page::text(rule.m_place ? rule.m_effect : "dropped by engines")) +
           s_cell("when", s_conditions(rule)) +
           s_figure("support", isDeciding ? supportText(rule.m_rule.support) : "") +
           s_figure("level", std::to_string(rule.m_rule.level)) + s_measured(rule, traffic) +
           "</tr>\n";
}

} // namespace

std::string pageEliteTable(Drawing const& drawing) {
    auto const& rules = drawing.m_rules;
    if (rules.m_elite.empty()) {
        return "<p>There are no elite rules.</p>\n";
    }
    std::string html = "<p>Elite rules are asked before the tree. ";
    html += rules.m_eliteHeader ? selectModeText(*rules.m_eliteHeader) : "";
    html += "</p>\n<div class=\"scroll\" role=\"region\" aria-label=\"Elite rules\" tabindex=\"0\">"
            "<table id=\"elite\">\n<thead><tr><th>Rule</th><th>Does</th><th>When all of this is "
            "so</th><th class=\"number\">Support</th><th class=\"number\">Level</th>";
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
