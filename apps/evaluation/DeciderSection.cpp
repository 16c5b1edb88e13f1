// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/DeciderBar.h"
#include "apps/evaluation/HtmlParts.h"
#include "apps/evaluation/Sections.h"
#include "apps/page/Escape.h"
#include "apps/text/NumberText.h"
#include "apps/workshop/DeciderText.h"
#include "rules/evaluate/FigureText.h"

#include <algorithm>

namespace Quorvane::Reports {

namespace {

using Figures = Rules::DeciderFigures;

std::string s_samples(Figures const& one) {
    if (one.m_samples.empty()) {
        return {};
    }
    std::string html = "<p class=\"samples\">Judged wrongly, for example:";
    for (auto const& sample : one.m_samples) {
        html += "<br><code>" + Page::isolated(sample) + "</code>";
    }
    return html + "</p>\n";
}

std::string s_wrong(Figures const& one) {
    auto const& wrong = one.m_wrong;
    if (wrong.total() == 0) {
        return "none wrong";
    }
    return wrong.m_ham > 0 ? groupedText(wrong.m_ham) + " ham called spam"
                           : groupedText(wrong.m_spam) + " spam called ham";
}

std::string s_item(Figures const& one, Rules::RuleSet const& set, std::uint64_t most) {
    auto const name = Workshop::deciderName(one.m_decider);
    return "<li>\n<p class=\"decider\"><strong>" + name + "</strong> " +
           groupedText(one.m_reached.m_spam) + " spam, " + groupedText(one.m_reached.m_ham) +
           " ham; " + s_wrong(one) + "; confidence " + Rules::fixedText(one.m_confidence, 4) +
           "</p>\n" + Charts::deciderBar(one.m_reached, most) + deciderTests(set, one.m_decider) +
           s_samples(one) + "</li>\n";
}

std::string s_list(std::vector<Figures> const& deciders, Rules::RuleSet const& set) {
    std::uint64_t most = 1;
    auto const shown = std::min(deciders.size(), shownDeciders);
    for (std::size_t i = 0; i < shown; ++i) {
        most = std::max(most, deciders[i].m_reached.total());
    }
    std::string html = "<ol class=\"deciders\">\n";
    for (std::size_t i = 0; i < shown; ++i) {
        html += s_item(deciders[i], set, most);
    }
    html += "</ol>\n";
    if (deciders.size() > shown) {
        html += "<p class=\"muted\">" + std::to_string(deciders.size() - shown) +
                " more; the JSON report lists all.</p>\n";
    }
    return html;
}

} // namespace

std::string deciderSection(Rules::Evaluation const& evaluation, EvaluatedRules const& rules) {
    auto const byUse = evaluation.m_deciders.byUse();
    auto const byErrors = evaluation.m_deciders.byErrors();
    std::string const used = byUse.empty() ? "<p class=\"empty\">No rule decided anything.</p>\n"
                                           : s_list(byUse, rules.m_set);
    std::string const erred = byErrors.empty()
                                  ? "<p class=\"empty\">No message was judged wrongly.</p>\n"
                                  : s_list(byErrors, rules.m_set);
    return "<section aria-labelledby=\"uses\">\n<h2 id=\"uses\">What decides most</h2>\n"
           "<p>Nodes of the tree and elite rules, over all corpora, with the tests that lead to "
           "them. A rule that is not sure enough for a verdict stands here too.</p>\n" +
           used +
           "</section>\n<section aria-labelledby=\"errors\">\n<h2 id=\"errors\">What errs "
           "most</h2>\n" +
           erred + "</section>\n";
}

} // namespace Quorvane::Reports
