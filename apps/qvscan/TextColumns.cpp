// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/TextColumns.h"

#include "apps/headers/ReceivedDate.h"
#include "apps/story/ResultText.h"
#include "apps/story/TextTable.h"
#include "apps/text/Utf8.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

namespace Quorvane {

namespace {

constexpr std::string_view gap = "  ";

struct Layout {
    char const* m_heading;
    std::size_t m_usual; // wide enough for most
    std::size_t m_least; // on a terminal that is too narrow for all
};

// In the order of the enumeration.
constexpr std::array<Layout, 10> layouts{{
    {"verdict", 11, 11},
    {"rule", 39, 10},
    {"relay", 40, 16},
    {"sender", 22, 10},
    {"date (UTC)", 16, 16},
    {"source", 24, 12},
    {"addresses", 29, 16},
    {"from", 30, 12},
    {"subject", 40, 12},
    {"message-id", 40, 12},
}};
static_assert(layouts.size() == static_cast<std::size_t>(Column::messageId) + 1);

Layout const& s_layout(Column column) {
    return layouts.at(static_cast<std::size_t>(column));
}

// What is left of the width is shared out in proportion to what each column gives up.
std::vector<std::size_t> s_widths(std::vector<Column> const& columns,
                                  std::optional<std::size_t> width) {
    std::size_t usual = 0;
    std::size_t least = 0;
    for (auto const column : columns) {
        usual += s_layout(column).m_usual;
        least += s_layout(column).m_least;
    }
    auto const gaps = gap.size() * (columns.size() - 1);
    auto const all = std::max(width.value_or(usual + gaps), gaps) - gaps;
    auto const free = std::clamp(all, least, usual) - least;
    std::vector<std::size_t> widths;
    for (auto const column : columns) {
        auto const& layout = s_layout(column);
        auto const more = layout.m_usual - layout.m_least;
        widths.push_back(layout.m_least + (more == 0 ? 0 : more * free / (usual - least)));
    }
    return widths;
}

std::string s_date(std::optional<std::int64_t> received) {
    constexpr std::size_t toTheMinute = 16;
    return received ? dateText(*received).substr(0, toTheMinute) : "";
}

std::string s_relay(ScanRecord const& record) {
    auto const name = relayName(record);
    return relayAddress(record) + (name.empty() ? "" : " " + name);
}

std::string s_bytes(Column column, ListedResult const& result) {
    auto const& [source, message, received, record, names] = result;
    switch (column) {
    case Column::verdict:
        return verdictText(record.verdict);
    case Column::rule:
        return ruleText(record.verdict, names);
    case Column::relay:
        return s_relay(record);
    case Column::sender:
        return record.headerFrom.domain();
    case Column::date:
        return s_date(received);
    case Column::source:
        return source;
    case Column::addresses:
        return record.verdict.ips;
    case Column::from:
        return message.m_from.value_or("");
    case Column::subject:
        return message.m_subject.value_or("");
    case Column::messageId:
        return message.m_messageId.value_or("");
    }
    return {};
}

} // namespace

TextColumns::TextColumns(std::vector<Column> columns, std::optional<std::size_t> width, bool colour)
    : m_columns(std::move(columns)), m_widths(s_widths(m_columns, width)),
      m_isFitted(width.has_value()), m_hasColour(colour) {}

std::string TextColumns::heading() const {
    std::vector<std::string> cells;
    for (auto const column : m_columns) {
        cells.emplace_back(s_layout(column).m_heading);
    }
    return joined(cells) + "\n";
}

// The last cell is not padded.
std::string TextColumns::joined(std::vector<std::string> const& cells) const {
    std::string text;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        bool const isLast = i + 1 == cells.size();
        text += isLast ? cells[i] : padded(cells[i], m_widths[i]) + std::string(gap);
    }
    return text;
}

std::string TextColumns::line(ListedResult const& result) const {
    auto const& [source, message, received, record, names] = result;
    std::vector<std::string> cells;
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        auto cell = textCell(s_bytes(m_columns[i], result));
        if (m_isFitted && m_columns[i] != Column::source) {
            cell = shortened(cell, m_widths[i]);
        }
        bool const hasColour = m_hasColour && m_columns[i] == Column::verdict;
        cells.push_back(hasColour ? inColourOf(record.verdict, padded(cell, m_widths[i])) : cell);
    }
    auto const text = joined(cells);
    return text + (record.failure ? "  (" + toPrintable(*record.failure) + ")" : "") + "\n";
}

} // namespace Quorvane
