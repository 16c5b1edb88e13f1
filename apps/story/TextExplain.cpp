// SPDX-License-Identifier: Apache-2.0
#include "apps/story/TextExplain.h"

#include "apps/story/RuleStory.h"
#include "apps/story/VerdictStory.h"
#include "apps/text/Utf8.h"

#include <algorithm>

namespace Quorvane {

namespace {

using Row = std::vector<std::string>;

// Columns as wide as their widest cell, in characters; the last one is not padded.
std::string s_table(std::vector<Row> const& rows) {
    std::vector<std::size_t> widths(rows.empty() ? 0 : rows.front().size());
    for (auto const& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], columns(row[i]));
        }
    }
    std::string text;
    for (auto const& row : rows) {
        text += "   ";
        for (std::size_t i = 0; i < row.size(); ++i) {
            bool const isLast = i + 1 == row.size();
            text +=
                " " + row[i] + (isLast ? "" : std::string(widths[i] - columns(row[i]) + 1, ' '));
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
        rows.push_back({line.m_name, line.m_value, toPrintable(line.m_words)});
    }
    return rows.empty() ? "" : "  Attributes that are not at their default:\n" + s_table(rows);
}

std::string s_line(std::string const& text) {
    return "    " + text + "\n";
}

// What the line before says, in words.
std::string s_words(std::string const& words) {
    return s_line("  " + toPrintable(words));
}

std::string s_titled(std::string const& title, std::string const& lines) {
    return lines.empty() ? "" : "  " + title + "\n" + lines;
}

std::string s_elite(RuleStory const& story) {
    std::string lines;
    for (auto const& rule : story.m_elite) {
        lines += s_line(ruleLine(rule));
        for (auto const& test : rule.m_tests) {
            lines += s_words(test.m_words);
        }
    }
    return s_titled("Elite rules that fired:", lines);
}

std::string s_path(RuleStory const& story) {
    std::string lines;
    for (auto const& node : story.m_path) {
        lines += s_line(nodeLine(node)) + (node.m_test ? s_words(node.m_test->m_words) : "");
    }
    return s_titled("Path through the tree:", lines.empty() ? "" : lines + s_line(story.m_end));
}

std::string s_needed(std::vector<ToldNeed> const& needs) {
    std::string lines;
    for (auto const& need : needs) {
        lines += s_line(need.m_verdict + ": " + need.m_text);
        for (auto const& words : need.m_words) {
            lines += s_words(words);
        }
    }
    return s_titled("Needed for another verdict:", lines);
}

std::string s_inWords(RuleStory const& story) {
    std::string text;
    for (auto const& sentence : story.m_sentences) {
        text += (text.empty() ? "  In words: " : "; ") + toPrintable(sentence);
    }
    return text.empty() ? text : text + ".\n";
}

} // namespace

std::string textExplain(ScanHost const& host, ScanOutcome const& outcome,
                        std::vector<StoryHop> const& trail) {
    auto const story = tellRules(host, outcome);
    auto text = "  Because: " + toPrintable(tellReason(host, outcome, trail)) + ".\n" +
                s_inWords(story) + s_trail(trail);
    if (outcome.m_reachedVerdict && !outcome.m_error) {
        text += s_attributes(outcome.m_record) + s_elite(story) + s_path(story);
    }
    return text + s_needed(tellNeeded(host, outcome, trail)) + "\n";
}

} // namespace Quorvane
