// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/Charts.h"
#include "apps/evaluation/Parts.h"
#include "apps/page/Table.h"
#include "apps/text/NumberText.h"
#include "rules/evaluate/FigureText.h"

#include <cmath>
#include <iterator>

namespace Quorvane::Reports {

namespace {

std::string s_threshold(double threshold) {
    return std::isfinite(threshold) ? Rules::fixedText(threshold, 4) : "none is high enough";
}

Charts::RocMarks s_marks(Rules::CorpusFigures const& figures, EvaluatedRules const& rules) {
    return {{std::begin(shownFalsePositives), std::end(shownFalsePositives)},
            figures.falsePositives(),
            figures.caught(),
            "threshold " + numberText(rules.m_settings.spamThreshold)};
}

// What the drawings show, for screen readers.
std::string s_description(Rules::CorpusFigures const& figures) {
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

std::string s_figures(Rules::CorpusFigures const& figures, std::string const& id,
                      EvaluatedRules const& rules) {
    auto const marks = s_marks(figures, rules);
    auto const description = s_description(figures);
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

} // namespace

std::string rocBlock(Rules::CorpusFigures const& figures, std::string const& id,
                     EvaluatedRules const& rules) {
    std::string const title = "<h3>Spam caught for ham called spam</h3>\n";
    auto const total = figures.judged();
    if (total.m_spam == 0 || total.m_ham == 0) {
        return title + figure("No curve.", {},
                              emptyNote("A ROC curve needs both spam and ham; here are " +
                                        labelsText(total) + "."));
    }
    return title + s_figures(figures, id, rules) + s_caughtTable(figures) + s_pointTable(figures);
}

} // namespace Quorvane::Reports
