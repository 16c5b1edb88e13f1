// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/Charts.h"
#include "apps/evaluation/Parts.h"
#include "apps/page/Escape.h"
#include "apps/page/Table.h"
#include "apps/text/NumberText.h"
#include "rules/evaluate/FigureText.h"

namespace Quorvane::Reports {

namespace {

std::string s_lead(Rules::CorpusFigures const& figures) {
    auto const judgeable = figures.judgeable();
    if (judgeable.m_total == 0) {
        return "<p>No messages.</p>\n";
    }
    auto text = "<p>" + groupedText(judgeable.m_hits) + " of " + groupedText(judgeable.m_total) +
                " messages can be judged (" + shareText(judgeable) +
                "): " + labelsText(figures.judged()) + '.';
    if (figures.m_unjudged.total() != 0) {
        text += " The others have no public hop and get no verdict whatever the rules.";
    }
    return text + "</p>\n";
}

std::string s_verdictTable(Rules::CorpusFigures const& figures) {
    Page::Table table(
        "What the thresholds give",
        {{"Verdict"}, {"Messages", true}, {"of", true}, {"Share", true}, {"95 % interval", true}});
    auto const& spam = figures.m_spamVerdicts;
    auto const& ham = figures.m_hamVerdicts;
    auto const add = [&table](std::string const& name, Rules::Rate const& rate) {
        table.row(withRate({name}, rate));
    };
    add("Spam called spam", figures.caught());
    add("Spam, no verdict", {spam.m_none, spam.total()});
    add("Spam called ham", figures.missed());
    add("Ham called spam", figures.falsePositives());
    add("Ham, no verdict", {ham.m_none, ham.total()});
    add("Ham called ham", figures.passed());
    add("Judgeable", figures.judgeable());
    return table.html();
}

std::string s_verdictBlock(Rules::CorpusFigures const& figures, std::string const& id) {
    auto const description = "Of the spam " + shareText(figures.caught()) + " is called spam and " +
                             shareText(figures.missed()) + " ham. Of the ham " +
                             shareText(figures.falsePositives()) + " is called spam and " +
                             shareText(figures.passed()) + " ham. The rest gets no verdict.";
    return "<h3>What the thresholds give</h3>\n" +
           sideBySide(
               figure("Verdicts.", "No verdict is neither right nor wrong.",
                      Charts::verdictChart(
                          {id + "-verdicts", "Verdicts on spam and ham", description},
                          {{"Spam", figures.m_spamVerdicts}, {"Ham", figures.m_hamVerdicts}})),
               s_verdictTable(figures));
}

std::string s_reliabilityTable(Rules::CorpusFigures const& figures) {
    Page::Table table("Confidence and actual share of spam", {{"Confidence"},
                                                              {"Mean", true},
                                                              {"Spam", true},
                                                              {"of", true},
                                                              {"Share", true},
                                                              {"95 % interval", true}});
    for (std::size_t i = 0; i < figures.m_reliability.size(); ++i) {
        auto const& bin = figures.m_reliability.at(i);
        if (bin.m_counts.total() == 0) {
            continue;
        }
        table.row(withRate({"from " + Rules::fixedText(Rules::binStart(i), 1),
                            Rules::fixedText(bin.meanConfidence(), 3)},
                           bin.spamRate()));
    }
    return table.html();
}

std::string s_reliabilityBlock(Rules::CorpusFigures const& figures, std::string const& id) {
    std::string const title = "<h3>Can confidences be believed?</h3>\n";
    Rules::LabelCounts decided;
    for (auto const& bin : figures.m_reliability) {
        decided += bin.m_counts;
    }
    if (decided.total() == 0) {
        return title +
               figure("No diagram.", {}, emptyNote("No rule gave a confidence to any message."));
    }
    return title +
           sideBySide(
               figure("Reliability.",
                      "On the dashed line a confidence equals the share of spam; above it there is "
                      "more spam. Below: messages for each tenth, spam above ham.",
                      Charts::reliabilityChart(
                          {id + "-reliability", "Reliability diagram",
                           "Share of spam for each tenth of the confidence of " +
                               labelsText(decided) + ". The table beside it holds the figures."},
                          figures)),
               s_reliabilityTable(figures));
}

} // namespace

std::string corpusSection(Rules::CorpusFigures const& figures, std::string const& id,
                          EvaluatedRules const& rules) {
    auto section = "<section class=\"corpus\" id=\"" + id + "\" aria-labelledby=\"" + id +
                   "-name\">\n<h2 id=\"" + id + "-name\">" + Page::isolated(figures.m_name) +
                   "</h2>\n" + s_lead(figures);
    if (figures.judged().total() != 0) {
        section += s_verdictBlock(figures, id) + rocBlock(figures, id, rules) +
                   s_reliabilityBlock(figures, id);
    }
    return section + "</section>\n";
}

} // namespace Quorvane::Reports
