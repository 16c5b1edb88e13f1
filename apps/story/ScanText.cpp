// SPDX-License-Identifier: Apache-2.0
#include "apps/story/ScanText.h"

#include "apps/story/FailedLookups.h"
#include "apps/story/OwnRelay.h"
#include "apps/story/ResultText.h"
#include "apps/story/RuleNaming.h"
#include "apps/story/RuleStory.h"
#include "apps/story/StepText.h"
#include "apps/story/TextTable.h"
#include "apps/story/TrailTable.h"
#include "apps/story/VerdictStory.h"
#include "apps/text/Utf8.h"

#include <algorithm>

namespace Quorvane {

namespace {

// What a brief explanation shows of lists, so that it has about 15 lines.
constexpr std::size_t fewHops = 4;
constexpr std::size_t fewRequirements = 3;

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

// The end of a list that goes on; empty when nothing is left.
std::string s_more(std::size_t left) {
    return left == 0 ? "" : s_line("... and " + std::to_string(left) + " more");
}

std::string s_attributes(ScanRecord const& record) {
    std::vector<TextRow> rows;
    for (auto const& line : attributeLines(record)) {
        rows.push_back({line.m_name, line.m_value, toPrintable(line.m_words)});
    }
    return rows.empty() ? "" : "  Attributes that are not at their default:\n" + textTable(rows);
}

// Only those that left something open: an answer shows in the attributes.
std::string s_lookups(ScanRecord const& record) {
    std::string lines;
    for (auto const& lookup : record.lookups) {
        if (hasFailed(lookup)) {
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

// In words where there are any, one line each.
std::string s_briefRequirement(Requirement const& requirement) {
    std::string text;
    for (auto const& words : requirement.m_words) {
        text += (text.empty() ? "" : ", and ") + words;
    }
    return s_line(requirement.m_verdict + ": " +
                  toPrintable(text.empty() ? requirement.m_text : text));
}

std::string s_briefRequirements(std::vector<Requirement> const& list) {
    auto const shown = list.size() > fewRequirements ? fewRequirements - 1 : list.size();
    std::string lines;
    for (std::size_t i = 0; i < shown; ++i) {
        lines += s_briefRequirement(list[i]);
    }
    return s_titled("Needed for another verdict:", lines + s_more(list.size() - shown));
}

std::string s_note(ScanRecord const& record) {
    auto const note = singleChangeNote(record);
    return note.empty() ? note : "  Another verdict: " + note + ".\n";
}

// "  Rule 9001 (A consumer line): Why it is there."
std::string s_decider(RecordedVerdict const& verdict, Rules::RuleNames const& names) {
    if (verdict.node == 0) {
        return {};
    }
    auto const* const name = deciderName(names, verdict);
    bool const hasSentence = name != nullptr && !name->m_sentence.empty();
    return (verdict.decision == Decision::elite ? "  Rule " : "  Node ") +
           ruleText(verdict, names) + (hasSentence ? ": " + toPrintable(name->m_sentence) : ".") +
           "\n";
}

std::string s_inWords(RuleStory const& story) {
    std::string text;
    for (auto const& sentence : story.m_sentences) {
        text += (text.empty() ? "  In words: " : "; ") + toPrintable(sentence);
    }
    return text.empty() ? text : text + ".\n";
}

std::string s_title(ExplainedScan const& scan, bool colour) {
    auto const& verdict = scan.m_record.verdict;
    auto const text = verdictText(verdict);
    return (colour ? inColourOf(verdict, text) : text) + "  " + toPrintable(scan.m_source) + "\n";
}

std::string s_trail(ExplainedScan const& scan, ExplainLength length) {
    auto const& trail = scan.m_record.trail;
    bool const isCut = length == ExplainLength::brief && trail.size() > fewHops + 1;
    auto const places = tellingHops(trail, isCut ? fewHops : trail.size());
    return s_titled("Trail, newest hop first (a sender could have invented what our side did not "
                    "record):",
                    trailTable(scan.m_record, scan.m_headers, places) +
                        s_more(trail.size() - places.size()));
}

std::string s_ownRelay(ScanRecord const& record) {
    auto const note = ownRelayNote(record);
    return note.empty() ? note : "  Note: " + toPrintable(note) + ".\n";
}

} // namespace

std::string textExplain(ExplainedScan const& scan, ExplainLength length, bool colour) {
    auto const& [source, headers, record, settings, names] = scan;
    auto const story = describeRules(record, names);
    auto const needed = requirements(record, settings, names);
    bool const isFull = length == ExplainLength::full;
    auto text = s_title(scan, colour) + "  Because: " + toPrintable(reasonText(record, settings)) +
                ".\n" + s_decider(record.verdict, names) + s_inWords(story) +
                s_trail(scan, length) + s_ownRelay(record) + s_lookups(record) +
                (isFull ? s_requirements(needed) : s_briefRequirements(needed)) + s_note(record);
    if (isFull && record.isJudged()) {
        text += s_attributes(record) + s_elite(story, record) + s_path(story, record.tree.end);
    }
    return text + "\n";
}

} // namespace Quorvane
