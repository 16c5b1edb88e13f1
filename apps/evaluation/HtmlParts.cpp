// SPDX-License-Identifier: Apache-2.0
#include "apps/evaluation/HtmlParts.h"

#include "apps/page/Escape.h"
#include "apps/text/NumberText.h"
#include "apps/workshop/DeciderText.h"
#include "rules/evaluate/FigureText.h"

namespace Quorvane::Reports {

namespace {

constexpr char dash[] = "&ndash;";

std::string s_caption(std::string_view titleText, std::string_view noteText) {
    return "<figure>\n<figcaption><strong>" + Page::text(titleText) + "</strong> " +
           Page::text(noteText) + "</figcaption>\n";
}

} // namespace

std::string figure(std::string_view titleText, std::string_view noteText, std::string const& svg) {
    return s_caption(titleText, noteText) + svg + "</figure>\n";
}

std::string noFigure(std::string_view titleText, std::string_view whyText) {
    return s_caption(titleText, {}) + "<p class=\"empty\">" + Page::text(whyText) +
           "</p>\n</figure>\n";
}

std::string sideBySide(std::string const& left, std::string const& right) {
    return "<div class=\"pair\">\n<div>\n" + left + "</div>\n<div>\n" + right + "</div>\n</div>\n";
}

std::vector<std::string> rateCells(Rules::Rate const& rate) {
    bool const isEmpty = rate.m_total == 0;
    return {groupedText(rate.m_hits), groupedText(rate.m_total),
            isEmpty ? dash : Rules::percentText(rate.value()),
            isEmpty ? dash : Rules::intervalText(rate)};
}

std::string shareText(Rules::Rate const& rate) {
    return rate.m_total == 0 ? "none" : Rules::percentText(rate.value());
}

std::string tile(std::string_view nameText, std::string const& value, std::string const& note) {
    return "<div class=\"panel\"><dt>" + Page::text(nameText) + "</dt><dd class=\"figure\">" +
           value + "</dd><dd class=\"muted\">" + note + "</dd></div>\n";
}

std::string rateTile(std::string_view nameText, Rules::Rate const& rate) {
    if (rate.m_total == 0) {
        return tile(nameText, shareText(rate), "no messages");
    }
    return tile(nameText, shareText(rate),
                groupedText(rate.m_hits) + " of " + groupedText(rate.m_total) + "<br>" +
                    Rules::intervalText(rate));
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

std::string labelsText(Rules::LabelCounts const& counts) {
    return groupedText(counts.m_spam) + " spam and " + groupedText(counts.m_ham) + " ham";
}

} // namespace Quorvane::Reports
