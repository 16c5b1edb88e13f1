// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/Charts.h"
#include "apps/evaluation/Parts.h"
#include "apps/page/Escape.h"
#include "apps/page/Page.h"
#include "apps/text/NumberText.h"
#include "rules/evaluate/FigureText.h"

namespace Quorvane::Reports {

namespace {

std::string s_tiles(Rules::CorpusFigures const& together) {
    auto const none = together.m_spamVerdicts.m_none + together.m_hamVerdicts.m_none;
    auto const total = together.judged();
    bool const hasCurve = total.m_spam != 0 && total.m_ham != 0;
    return "<dl class=\"tiles\">\n" + rateTile("Spam called spam", together.caught()) +
           rateTile("Ham called spam", together.falsePositives()) +
           rateTile("No verdict", {none, total.total()}) +
           rateTile("Judgeable", together.judgeable()) +
           tile("ROC area", hasCurve ? Rules::fixedText(together.m_roc.area(), 4) : "none",
                hasCurve ? "1 is perfect, 0.5 is guessing" : "needs both spam and ham") +
           "</dl>\n";
}

std::string s_header(Rules::Evaluation const& evaluation, EvaluatedRules const& rules) {
    auto const corpora = evaluation.m_corpora.size();
    auto const messages = evaluation.m_together.judgeable().m_total;
    return "<header class=\"top\">\n<p class=\"kicker\">Quorvane Deep Header: evaluation</p>\n"
           "<h1>What " +
           Page::isolated(rules.m_name) + " does on sorted mail</h1>\n<p>" + groupedText(messages) +
           (messages == 1 ? " message" : " messages") + " from " + std::to_string(corpora) +
           (corpora == 1 ? " corpus" : " corpora") + ". Called spam from a confidence of " +
           numberText(rules.m_settings.spamThreshold) +
           " on; called ham where the confidence that it is ham is " +
           numberText(rules.m_settings.hamThreshold) + " or more.</p>\n" +
           s_tiles(evaluation.m_together) + "</header>\n";
}

std::string s_link(std::string const& id, std::string const& name) {
    return "<li><a href=\"#" + id + "\">" + Page::isolated(name) + "</a></li>\n";
}

std::string s_id(std::size_t corpus) {
    return "corpus-" + std::to_string(corpus + 1);
}

// All corpora stand on the page; the script shows one at a time.
std::string s_corpora(Rules::Evaluation const& evaluation, EvaluatedRules const& rules) {
    auto const& corpora = evaluation.m_corpora;
    if (corpora.size() == 1) {
        return corpusSection(corpora.front(), s_id(0), rules);
    }
    auto links = s_link("together", evaluation.m_together.m_name);
    auto sections = corpusSection(evaluation.m_together, "together", rules);
    for (std::size_t i = 0; i < corpora.size(); ++i) {
        links += s_link(s_id(i), corpora[i].m_name);
        sections += corpusSection(corpora[i], s_id(i), rules);
    }
    return comparisonSection(evaluation) +
           "<nav class=\"corpora no-print\" aria-label=\"Corpora\">\n<ul>\n" + links +
           "</ul>\n</nav>\n" + sections;
}

constexpr char notes[] =
    "<footer class=\"end\">\n<p>Rates are of judgeable messages. An interval holds the true rate "
    "in 95 of 100 such measurements (Wilson score). No verdict is neither right nor wrong. A "
    "message that no rule decides is called spam at no threshold. Measure on mail that the rules "
    "were not learned from.</p>\n</footer>\n";

} // namespace

std::string reportHtml(Rules::Evaluation const& evaluation, EvaluatedRules const& rules) {
    Page::Document document;
    document.m_title = "Evaluation of " + rules.m_name;
    document.m_style = std::string(Charts::style()) + std::string(pageStyle());
    document.m_script = pageScript();
    document.m_body = s_header(evaluation, rules) + "<main>\n" + s_corpora(evaluation, rules) +
                      deciderSection(evaluation, rules) + "</main>\n" + notes;
    return Page::html(document);
}

} // namespace Quorvane::Reports
