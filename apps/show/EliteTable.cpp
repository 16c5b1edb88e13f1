// SPDX-License-Identifier: Apache-2.0
#include "apps/show/NodeText.h"
#include "apps/story/RuleNaming.h"
#include "apps/text/Utf8.h"

#include <algorithm>

namespace Quorvane::Show {

namespace {

using Row = std::vector<std::string>;

// A row of the table; the name stands below the conditions.
struct NamedRow {
    Row m_cells;
    std::string m_name; // empty: none
};

constexpr char indent[] = "  ";
constexpr char gap[] = "  ";
constexpr char below[] = "      ";
// Of the last column; with less it stands below the others.
constexpr std::size_t minConditionWidth = 30;

Row s_headings(bool isMeasured) {
    return isMeasured ? Row{"rule", "does", "support", "level", "fired", "decided", "when"}
                      : Row{"rule", "does", "support", "level", "when"};
}

NamedRow s_row(ShownElite const& rule, Traffic const* traffic) {
    auto row = eliteFigures(rule, traffic);
    row.insert(row.begin(), {rule.m_code, rule.m_effect});
    row.push_back(eliteConditions(rule));
    return {row, nameAndSentence(rule.m_name ? &*rule.m_name : nullptr)};
}

std::vector<std::size_t> s_widths(std::vector<NamedRow> const& rows) {
    std::vector<std::size_t> widths(rows.front().m_cells.size() - 1);
    for (auto const& row : rows) {
        for (std::size_t i = 0; i < widths.size(); ++i) {
            widths[i] = std::max(widths[i], columns(row.m_cells[i]));
        }
    }
    return widths;
}

// All columns but the last.
std::string s_head(Row const& row, std::vector<std::size_t> const& widths) {
    std::string head = indent;
    for (std::size_t i = 0; i < widths.size(); ++i) {
        head += padded(row[i], widths[i]) + gap;
    }
    return head;
}

// The conditions and the name, of which a heading has none.
std::vector<std::string> s_lastColumn(NamedRow const& row, std::size_t width) {
    auto lines = wrapped(row.m_cells.back(), width);
    if (!row.m_name.empty()) {
        auto const name = wrapped(row.m_name, width);
        lines.insert(lines.end(), name.begin(), name.end());
    }
    return lines;
}

std::string s_trimmed(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

// The conditions get what the other columns leave, and are broken into lines; where that is too
// little they stand below the row.
std::string s_table(std::vector<NamedRow> const& rows, TextStyle const& style) {
    auto const widths = s_widths(rows);
    auto const taken = s_head(rows.front().m_cells, widths).size();
    bool const isNarrow = style.m_width < taken + minConditionWidth;
    auto const under = isNarrow ? std::string(below) : std::string(taken, ' ');
    auto const left = style.m_width - std::min(under.size(), style.m_width - 1);
    std::string text;
    for (auto const& row : rows) {
        auto head = s_head(row.m_cells, widths);
        if (isNarrow) {
            text += s_trimmed(head) + '\n';
            head = under;
        }
        bool const isHeading = &row == &rows.front();
        if (isHeading && isNarrow) {
            continue;
        }
        for (auto const& line : s_lastColumn(row, left)) {
            text += s_trimmed(head + line) + '\n';
            head = under;
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
    std::vector<NamedRow> rows{{s_headings(drawing.m_traffic != nullptr), ""}};
    for (auto const& rule : rules.m_elite) {
        rows.push_back(s_row(rule, drawing.m_traffic));
    }
    return wrappedText(text, style) + '\n' + s_table(rows, style);
}

} // namespace Quorvane::Show
