// SPDX-License-Identifier: Apache-2.0
#include "apps/evaluation/DifferenceSections.h"
#include "apps/evaluation/HtmlParts.h"
#include "apps/page/Escape.h"
#include "apps/text/NumberText.h"
#include "apps/workshop/DeciderText.h"

#include <algorithm>

namespace Quorvane::Reports {

namespace {

std::string s_ruling(std::string const& when, Rules::JudgedVector const& judged,
                     Rules::RuleSet const& set) {
    auto const head = "<p class=\"decider\">" + when + ": ";
    if (judged.m_decider.m_number == 0) {
        return head + "no rule decided</p>\n";
    }
    auto text =
        Workshop::deciderName(judged.m_decider) + ", " + numberText(judged.m_confidence) + " spam";
    if (judged.m_adjust != 0.0) {
        text += std::string(", adjusted by ") + (judged.m_adjust > 0.0 ? "+" : "") +
                numberText(judged.m_adjust);
    }
    return head + Page::text(text) + "</p>\n" + deciderTests(set, judged.m_decider);
}

std::string s_samples(Rules::ChangeGroup const& group) {
    if (group.m_samples.empty()) {
        return {};
    }
    std::string html = "<p class=\"samples\">For example:";
    for (auto const& sample : group.m_samples) {
        html += "<br>" + std::string(Rules::mailKindName(sample.m_kind)) + " <code>" +
                Page::isolated(sample.m_source) + "</code>";
    }
    return html + "</p>\n";
}

std::string s_item(Rules::ChangeGroup const& group, ComparedSets const& sets) {
    return "<li>\n<p class=\"decider\"><strong>" + Page::text(changeText(group)) + "</strong> " +
           kindsText(group.m_counts) + "</p>\n" +
           sideBySide(s_ruling("Before", group.m_before, sets.m_before.m_set),
                      s_ruling("After", group.m_after, sets.m_after.m_set)) +
           s_samples(group) + "</li>\n";
}

} // namespace

std::string kindsText(Rules::KindCounts const& counts) {
    std::string text;
    for (auto const kind : Rules::mailKinds) {
        if (counts.of(kind) != 0) {
            text += (text.empty() ? "" : ", ") + groupedText(counts.of(kind)) + ' ' +
                    Rules::mailKindName(kind);
        }
    }
    return text.empty() ? "none" : text;
}

std::string changeText(Rules::ChangeGroup const& group) {
    return std::string(Rules::verdictName(group.m_before.m_verdict)) + " \xE2\x86\x92 " +
           Rules::verdictName(group.m_after.m_verdict);
}

std::string groupSection(Rules::Difference const& difference, ComparedSets const& sets) {
    auto const& groups = difference.m_groups;
    std::string html = "<section aria-labelledby=\"changes\">\n"
                       "<h2 id=\"changes\">What changes, and by which rules</h2>\n";
    if (groups.empty()) {
        return html + "<p class=\"empty\">No verdict changes.</p>\n</section>\n";
    }
    auto const shown = std::min(groups.size(), pageChanges);
    html += "<ol class=\"deciders\">\n";
    for (std::size_t i = 0; i < shown; ++i) {
        html += s_item(groups[i], sets);
    }
    html += "</ol>\n";
    if (groups.size() > shown) {
        html += "<p class=\"muted\">" + std::to_string(groups.size() - shown) +
                " more kinds of change; the JSON report lists all.</p>\n";
    }
    return html + "</section>\n";
}

} // namespace Quorvane::Reports
