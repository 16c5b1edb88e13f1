// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/Charts.h"
#include "apps/evaluation/Parts.h"
#include "apps/page/Escape.h"
#include "apps/page/Table.h"
#include "apps/text/NumberText.h"
#include "rules/evaluate/FigureText.h"

#include <cmath>
#include <iterator>

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

std::string s_threshold(double threshold) {
    return std::isfinite(threshold) ? Rules::fixedText(threshold, 4) : "none is high enough";
}

Charts::RocMarks s_rocMarks(Rules::CorpusFigures const& figures, EvaluatedRules const& rules) {
    return {{std::begin(shownFalsePositives), std::end(shownFalsePositives)},
            figures.falsePositives(),
            figures.caught(),
            "threshold " + numberText(rules.m_settings.spamThreshold)};
}

// What the drawings show, for screen readers.
std::string s_rocDescription(Rules::CorpusFigures const& figures) {
    std::string text = "Area under the curve " + Rules::fixedText(figures.m_roc.area(), 4) + ".";
    for (auto const share : shownFalsePositives) {
        auto const called = figures.m_roc.atFalsePositives(share).m_called;
        text += " With at most " + Rules::fixedText(100.0 * share, 1) +
                " % of the ham called spam, " +
                shareText({called.m_spam, figures.judged().m_spam}) + " of the spam is caught.";
    }
    return text + " The thresholds in force catch " + shareText(figures.caught()) +
           " of the spam and call " + shareText(figures.falsePositives()) + " of the ham spam.";
}

std::string s_rocFigures(Rules::CorpusFigures const& figures, std::string const& id,
                         EvaluatedRules const& rules) {
    auto const marks = s_rocMarks(figures, rules);
    auto const description = s_rocDescription(figures);
    auto const chart = [&](char const* suffix, char const* title, Charts::Scale::Kind kind) {
        return Charts::rocChart({id + suffix, title, description}, figures.m_roc, marks, kind);
    };
    return sideBySide(
        figure("Where it matters: below 1 %.",
               "Caught with at most that much ham called spam; shaded: less than one message.",
               chart("-roc-log", "ROC curve, logarithmic", Charts::Scale::Kind::logarithmic)),
        figure("The whole curve.",
               "The area under it, " + Rules::fixedText(figures.m_roc.area(), 4) +
                   ", is the probability that a spam scores above a ham.",
               chart("-roc", "ROC curve", Charts::Scale::Kind::linear)));
}

std::string s_caughtTable(Rules::CorpusFigures const& figures) {
    Page::Table table("Spam caught at fixed shares of ham called spam",
                      {{"Ham called spam, at most"},
                       {"Spam caught", true},
                       {"of", true},
                       {"Share", true},
                       {"95 % interval", true},
                       {"Threshold", true}});
    for (auto const share : shownFalsePositives) {
        auto const point = figures.m_roc.atFalsePositives(share);
        auto cells = withRate({Rules::fixedText(100.0 * share, 1) + " %"},
                              {point.m_called.m_spam, figures.judged().m_spam});
        cells.push_back(s_threshold(point.m_threshold));
        table.row(cells);
    }
    return table.html();
}

// Without thresholds that change nothing in this corpus.
std::string s_pointTable(Rules::CorpusFigures const& figures) {
    Page::Table table("Every threshold of the curve", {{"Threshold", true},
                                                       {"Spam called spam", true},
                                                       {"Share", true},
                                                       {"Ham called spam", true},
                                                       {"Share", true}});
    Rules::LabelCounts before;
    auto const total = figures.judged();
    std::size_t rows = 0;
    for (auto const& point : figures.m_roc.points()) {
        if (point.m_called == before) {
            continue;
        }
        before = point.m_called;
        table.row({s_threshold(point.m_threshold), groupedText(before.m_spam),
                   shareText({before.m_spam, total.m_spam}), groupedText(before.m_ham),
                   shareText({before.m_ham, total.m_ham})});
        ++rows;
    }
    return "<details><summary>Every threshold of the curve (" + std::to_string(rows) +
           ")</summary>\n" + table.html() + "</details>\n";
}

// How much spam is caught for how much ham called spam: curves and tables.
std::string s_rocBlock(Rules::CorpusFigures const& figures, std::string const& id,
                       EvaluatedRules const& rules) {
    std::string const title = "<h3>Spam caught for ham called spam</h3>\n";
    auto const total = figures.judged();
    if (total.m_spam == 0 || total.m_ham == 0) {
        return title + figure("No curve.", {},
                              emptyNote("A ROC curve needs both spam and ham; here are " +
                                        labelsText(total) + "."));
    }
    return title + s_rocFigures(figures, id, rules) + s_caughtTable(figures) +
           s_pointTable(figures);
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
        section += s_verdictBlock(figures, id) + s_rocBlock(figures, id, rules) +
                   s_reliabilityBlock(figures, id);
    }
    return section + "</section>\n";
}

} // namespace Quorvane::Reports
