// SPDX-License-Identifier: Apache-2.0
#include "apps/evaluation/Parts.h"

#include "apps/page/Escape.h"
#include "apps/text/NumberText.h"
#include "apps/workshop/DeciderText.h"
#include "rules/evaluate/FigureText.h"

namespace Quorvane::Reports {

std::string labelsText(Rules::LabelCounts const& counts) {
    return groupedText(counts.m_spam) + " spam and " + groupedText(counts.m_ham) + " ham";
}

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

std::string changeText(Rules::ChangeGroup const& group, std::string const& arrow) {
    return Rules::verdictName(group.m_before.m_verdict) + (' ' + arrow + ' ') +
           Rules::verdictName(group.m_after.m_verdict);
}

std::string rulingText(Rules::JudgedVector const& judged) {
    if (judged.m_decider.m_number == 0) {
        return "no rule decided";
    }
    return Workshop::deciderName(judged.m_decider) + ", " + numberText(judged.m_confidence) +
           " spam" + (judged.m_adjust != 0.0 ? ", adjusted by " + signedText(judged.m_adjust) : "");
}

std::string signedText(double value) {
    return (value > 0.0 ? "+" : "") + numberText(value);
}

std::string shareText(Rules::Rate const& rate) {
    return rate.m_total == 0 ? "none" : Rules::percentText(rate.value());
}

std::string section(std::string const& id, std::string const& title, std::string const& content) {
    return "<section aria-labelledby=\"" + id + "\">\n<h2 id=\"" + id + "\">" + title + "</h2>\n" +
           content + "</section>\n";
}

std::string emptyNote(std::string_view whyText) {
    return "<p class=\"empty\">" + Page::text(whyText) + "</p>\n";
}

std::string figure(std::string_view titleText, std::string_view noteText, std::string const& svg) {
    return "<figure>\n<figcaption><strong>" + Page::text(titleText) + "</strong> " +
           Page::text(noteText) + "</figcaption>\n" + svg + "</figure>\n";
}

std::string sideBySide(std::string const& left, std::string const& right) {
    return "<div class=\"pair\">\n<div>\n" + left + "</div>\n<div>\n" + right + "</div>\n</div>\n";
}

std::vector<std::string> withRate(std::vector<std::string> cells, Rules::Rate const& rate) {
    bool const isEmpty = rate.m_total == 0;
    cells.insert(cells.end(), {groupedText(rate.m_hits), groupedText(rate.m_total),
                               isEmpty ? "&ndash;" : Rules::percentText(rate.value()),
                               isEmpty ? "&ndash;" : Rules::intervalText(rate)});
    return cells;
}

std::string tile(std::string_view nameText, std::string const& value, std::string const& note) {
    return "<div class=\"panel\"><dt>" + Page::text(nameText) + "</dt><dd class=\"figure\">" +
           value + "</dd><dd class=\"muted\">" + note + "</dd></div>\n";
}

std::string rateTile(std::string_view nameText, Rules::Rate const& rate) {
    auto const counts = groupedText(rate.m_hits) + " of " + groupedText(rate.m_total) + "<br>";
    return tile(nameText, shareText(rate),
                rate.m_total == 0 ? "no messages" : counts + Rules::intervalText(rate));
}

std::string ruleList(std::vector<std::string> const& items, std::size_t hidden,
                     std::string const& what) {
    std::string html = "<ol class=\"deciders\">\n";
    for (auto const& item : items) {
        html += "<li>\n" + item + "</li>\n";
    }
    html += "</ol>\n";
    return hidden == 0 ? html
                       : html + "<p class=\"muted\">" + std::to_string(hidden) + " more" + what +
                             "; the JSON report lists all.</p>\n";
}

std::string deciderTests(Rules::RuleSet const& set, Rules::Decider const& decider) {
    std::string tests;
    std::string words;
    for (auto const& test : Workshop::deciderTests(set, decider)) {
        tests += (tests.empty() ? "<code>" : " and <code>") + Page::text(test.m_text) + "</code>";
        words += "<li>" + Page::text(test.m_words) + "</li>\n";
    }
    if (tests.empty()) {
        return "<p class=\"tests\">always</p>\n";
    }
    return "<p class=\"tests\">" + tests + "</p>\n<details><summary>In words</summary>\n<ul>\n" +
           words + "</ul>\n</details>\n";
}

std::string sampleList(std::string const& title, std::vector<std::string> const& samples) {
    std::string html;
    for (auto const& sample : samples) {
        html += "<br>" + sample;
    }
    return html.empty() ? html : "<p class=\"samples\">" + title + html + "</p>\n";
}

} // namespace Quorvane::Reports
