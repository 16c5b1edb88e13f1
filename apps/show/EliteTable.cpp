// SPDX-License-Identifier: Apache-2.0
#include "apps/show/Drawings.h"

#include "apps/common/RuleStory.h"
#include "apps/show/NodeText.h"
#include "apps/show/Numbers.h"

#include <algorithm>

namespace Quorvane::Show {

namespace {

using Row = std::vector<std::string>;

constexpr char indent[] = "  ";
constexpr char gap[] = "  ";
// Of the last column, however narrow the terminal is.
constexpr std::size_t minConditionWidth = 24;

std::string s_effect(ShownElite const& rule) {
    return rule.m_place ? rule.m_effect : "dropped by engines";
}

Row s_headings(bool isMeasured) {
    Row row{"rule", "does", "support", "level"};
    if (isMeasured) {
        row.insert(row.end(), {"fired", "decided"});
    }
    row.emplace_back("when");
    return row;
}

Row s_row(ShownElite const& rule, Traffic const* traffic) {
    bool const isDeciding = rule.m_rule.type == EliteType::deciding;
    Row row{rule.m_code, s_effect(rule), isDeciding ? numberText(rule.m_rule.support) + " %" : "",
            std::to_string(rule.m_rule.level)};
    if (traffic != nullptr) {
        auto const use = rule.m_place ? traffic->m_elite.at(*rule.m_place) : Traffic::Use{};
        row.push_back(percentText(traffic->share(use.m_reached)));
        row.push_back(isDeciding ? percentText(traffic->share(use.m_decided)) : "");
    }
    row.push_back(eliteConditions(rule));
    return row;
}

// The last column gets what the others leave, and is broken into lines.
std::string s_table(std::vector<Row> const& rows, TextStyle const& style) {
    auto const last = rows.front().size() - 1;
    std::vector<std::size_t> widths(last);
    std::size_t taken = std::string_view(indent).size();
    for (std::size_t i = 0; i < last; ++i) {
        for (auto const& row : rows) {
            widths[i] = std::max(widths[i], columns(row[i]));
        }
        taken += widths[i] + std::string_view(gap).size();
    }
    auto const left = style.m_width > taken ? style.m_width - taken : 0;
    std::string text;
    for (auto const& row : rows) {
        std::string head = indent;
        for (std::size_t i = 0; i < last; ++i) {
            head += padded(row[i], widths[i]) + gap;
        }
        bool const isHeading = &row == &rows.front();
        for (auto const& line : wrapped(row[last], std::max(left, minConditionWidth))) {
            text += isHeading ? coloured(style, "2", head + line) : head + line;
            text += '\n';
            head.assign(taken, ' ');
        }
    }
    return text;
}

} // namespace

std::string eliteTable(Drawing const& drawing, TextStyle const& style) {
    auto const& rules = drawing.m_rules;
    if (rules.m_elite.empty()) {
        return "No elite rules.\n";
    }
    std::string text = "Elite rules. ";
    text += rules.m_eliteHeader ? selectModeText(*rules.m_eliteHeader) : "";
    std::string table;
    for (auto const& line : wrapped(text, style.m_width)) {
        table += line + '\n';
    }
    std::vector<Row> rows{s_headings(drawing.m_traffic != nullptr)};
    for (auto const& rule : rules.m_elite) {
        rows.push_back(s_row(rule, drawing.m_traffic));
    }
    return table + '\n' + s_table(rows, style);
}

} // namespace Quorvane::Show
