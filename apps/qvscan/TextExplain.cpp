// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/TextExplain.h"

#include "apps/common/RuleStory.h"
#include "apps/common/TrailStory.h"
#include "apps/common/Utf8.h"
#include "apps/common/VerdictStory.h"

#include <algorithm>

namespace Quorvane {

namespace {

using Row = std::vector<std::string>;

// Columns as wide as their widest cell, in characters; the last one is not padded.
std::string s_table(std::vector<Row> const& rows) {
    auto const width = [](std::string const& cell) {
        // Continuation bytes of UTF-8 take no column.
        return static_cast<std::size_t>(
            std::count_if(cell.begin(), cell.end(), [](char c) { return (c & 0xC0) != 0x80; }));
    };
    std::vector<std::size_t> widths(rows.empty() ? 0 : rows.front().size());
    for (auto const& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], width(row[i]));
        }
    }
    std::string text;
    for (auto const& row : rows) {
        text += "   ";
        for (std::size_t i = 0; i < row.size(); ++i) {
            bool const isLast = i + 1 == row.size();
            text += " " + row[i] + (isLast ? "" : std::string(widths[i] - width(row[i]) + 1, ' '));
        }
        text += "\n";
    }
    return text;
}

std::string s_cell(std::string const& bytes) {
    return bytes.empty() ? "-" : toPrintable(bytes);
}

std::string s_trail(std::vector<StoryHop> const& trail) {
    if (trail.empty()) {
        return {};
    }
    std::vector<Row> rows{
        {"#", "recorded by", "address", "announced", "reverse name", "receiver", "taken for"}};
    std::size_t number = 0;
    for (auto const& hop : trail) {
        rows.push_back({hop.m_isCurrent ? "now" : std::to_string(++number),
                        hop.m_isVouched ? "our side" : "the sender?", s_cell(hop.m_address),
                        s_cell(hop.m_helo), s_cell(hop.m_reverseName), s_cell(hop.m_by),
                        roleText(hop)});
    }
    return "  Trail, newest hop first (a sender could have invented what our side did not "
           "record):\n" +
           s_table(rows);
}

std::string s_attributes(DeepHeaderAdapter::MsgProperties const& record) {
    std::vector<Row> rows;
    for (auto const& line : tellAttributes(record)) {
        rows.push_back({line.m_name, line.m_value, line.m_meaning});
    }
    return rows.empty() ? "" : "  Attributes that are not at their default:\n" + s_table(rows);
}

std::string s_list(std::string const& title, std::vector<std::string> const& lines) {
    std::string text = lines.empty() ? "" : "  " + title + "\n";
    for (auto const& line : lines) {
        text += "    " + line + "\n";
    }
    return text;
}

} // namespace

std::string textExplain(ScanHost const& host, HeaderContainer const& headers,
                        MessageFacts const& facts, ScanOutcome const& outcome) {
    auto const trail = tellTrail(host, headers, facts);
    auto const& engine = *host.engine().operator->();
    auto const& settings = host.settings().m_judging;
    auto text =
        "  Because: " + toPrintable(tellReason(host, outcome, trail)) + ".\n" + s_trail(trail);
    if (outcome.m_reachedVerdict && !outcome.m_error) {
        text += s_attributes(outcome.m_record) +
                s_list("Elite rules that fired:", tellElite(engine, outcome, settings)) +
                s_list("Path through the tree:", tellPath(engine, outcome, settings));
    }
    return text + s_list("Needed for another verdict:", tellNeeded(host, outcome, trail)) + "\n";
}

} // namespace Quorvane
