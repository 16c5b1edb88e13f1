// SPDX-License-Identifier: Apache-2.0
#include "apps/story/ScanText.h"

#include "apps/story/RuleNaming.h"
#include "apps/story/RuleStory.h"
#include "apps/story/StepText.h"
#include "apps/story/VerdictStory.h"
#include "apps/text/NumberText.h"
#include "apps/text/Utf8.h"

#include <algorithm>
#include <string_view>

namespace Quorvane {

namespace {

// Columns fit what is usual; longer text pushes the rest of its line.
constexpr std::size_t verdictWidth = 4;
constexpr std::size_t confidenceWidth = 8;
constexpr std::size_t nodeWidth = 5;
constexpr std::size_t addressWidth = 31; // two IPv4 addresses

std::string s_padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string_view s_colour(std::string_view verdict) {
    if (verdict == "spam") {
        return "\x1B[31m";
    }
    return verdict == "ham" ? "\x1B[32m" : "\x1B[2m";
}

std::string s_verdict(RecordedVerdict const& answer, bool colour) {
    std::string const verdict = verdictName(answer);
    auto const padded = s_padded(verdict, verdictWidth);
    return colour ? std::string(s_colour(verdict)) + padded + "\x1B[0m" : padded;
}

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

std::string s_trail(ScanRecord const& record) {
    if (record.trail.empty()) {
        return {};
    }
    std::vector<Row> rows{
        {"#", "recorded by", "address", "announced", "reverse name", "receiver", "taken for"}};
    std::size_t number = 0;
    for (auto const& hop : record.trail) {
        rows.push_back({hop.isCurrent ? "now" : std::to_string(++number),
                        hop.isVouched ? "our side" : "the sender?",
                        s_cell(hop.address.asString(true)), s_cell(hop.from),
                        s_cell(hop.reverseName), s_cell(hop.by), roleText(hop)});
    }
    return "  Trail, newest hop first (a sender could have invented what our side did not "
           "record):\n" +
           s_table(rows);
}

std::string s_attributes(ScanRecord const& record) {
    std::vector<Row> rows;
    for (auto const& line : attributeLines(record)) {
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

// Only those that left something open: an answer shows in the attributes.
std::string s_lookups(ScanRecord const& record) {
    std::string lines;
    for (auto const& lookup : record.lookups) {
        if (lookup.result == LookupResult::failed || lookup.result == LookupResult::late) {
            lines += s_line(toPrintable(lookup.name) + ": " + lookupText(lookup.result));
        }
    }
    return s_titled("DNS could not say (counts as not existing):", lines);
}

// What decided has its sentence at the beginning of the explanation.
std::string s_sentence(auto const& described) {
    auto const* const name = described.m_name;
    return name == nullptr || name->m_sentence.empty() || described.m_isDecider
               ? std::string()
               : s_words(name->m_sentence);
}

std::string s_elite(RuleStory const& story, ScanRecord const& record) {
    std::string lines;
    for (auto const& rule : story.m_elite) {
        if (!rule.m_rule->hasFired()) {
            continue;
        }
        lines += s_line(ruleLine(rule, record)) + s_sentence(rule);
        for (auto const& test : rule.m_tests) {
            lines += s_words(test.m_words);
        }
    }
    return s_titled("Elite rules that fired:", lines);
}

std::string s_path(RuleStory const& story, WalkEnd end) {
    std::string lines;
    for (auto const& node : story.m_path) {
        lines += s_line(nodeLine(node)) + s_sentence(node) +
                 (node.m_test ? s_words(node.m_test->m_words) : "");
    }
    return s_titled("Path through the tree:",
                    lines.empty() ? "" : lines + s_line(walkEndText(end)));
}

std::string s_requirements(std::vector<Requirement> const& list) {
    std::string lines;
    for (auto const& requirement : list) {
        lines += s_line(requirement.m_verdict + ": " + requirement.m_text);
        for (auto const& words : requirement.m_words) {
            lines += s_words(words);
        }
    }
    return s_titled("Needed for another verdict:", lines);
}

std::string s_note(ScanRecord const& record) {
    auto const note = singleChangeNote(record);
    return note.empty() ? note : "  Another verdict: " + note + ".\n";
}

// "  Rule 9001 (A consumer line): Why it is there."
std::string s_decider(RecordedVerdict const& verdict, Rules::RuleNames const& names) {
    auto const* const name = deciderName(names, verdict);
    if (name == nullptr) {
        return {};
    }
    return (verdict.decision == Decision::elite ? "  Rule " : "  Node ") +
           std::to_string(verdict.node) + inBrackets(name) +
           (name->m_sentence.empty() ? "" : ": " + toPrintable(name->m_sentence)) + "\n";
}

std::string s_inWords(RuleStory const& story) {
    std::string text;
    for (auto const& sentence : story.m_sentences) {
        text += (text.empty() ? "  In words: " : "; ") + toPrintable(sentence);
    }
    return text.empty() ? text : text + ".\n";
}

} // namespace

std::string textRecord(std::string const& source, ScanRecord const& record,
                       Rules::RuleNames const& names, bool colour) {
    auto const& answer = record.verdict;
    bool const isDecided = answer.node != 0;
    auto const confidence = isDecided ? numberText(answer.confidence) : "-";
    auto const node = isDecided ? std::to_string(answer.node) : "-";
    auto line = s_verdict(answer, colour) + "  " + s_padded(confidence, confidenceWidth) + "  " +
                s_padded(node, nodeWidth) + "  " + s_padded(s_cell(answer.ips), addressWidth) +
                "  " + toPrintable(source);
    if (auto const name = inBrackets(deciderName(names, answer)); !name.empty()) {
        line += ' ' + name;
    }
    if (record.failure) {
        line += "  (" + toPrintable(*record.failure) + ")";
    }
    return line + "\n";
}

std::string textExplain(ScanRecord const& record, DeepHeaderSettings const& settings,
                        Rules::RuleNames const& names) {
    auto const story = describeRules(record, names);
    auto text = "  Because: " + toPrintable(reasonText(record, settings)) + ".\n" +
                s_decider(record.verdict, names) + s_inWords(story) + s_trail(record);
    if (record.isJudged()) {
        text += s_lookups(record) + s_attributes(record) + s_elite(story, record) +
                s_path(story, record.tree.end);
    }
    return text + s_requirements(requirements(record, settings, names)) + s_note(record) + "\n";
}

} // namespace Quorvane
