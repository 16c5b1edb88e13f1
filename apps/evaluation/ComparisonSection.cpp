// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/Charts.h"
#include "apps/evaluation/Parts.h"
#include "apps/page/Escape.h"
#include "apps/page/Table.h"
#include "apps/text/NumberText.h"
#include "rules/evaluate/FigureText.h"

namespace Quorvane::Reports {

namespace {

using RateOf = Rules::Rate (Rules::CorpusFigures::*)() const;
using Kind = Charts::Scale::Kind;

struct Comparison {
    char const* m_id;
    char const* m_title;
    char const* m_note;
    RateOf m_rate;
    Kind m_kind;
    char const* m_colour;
};

// Errors are rare, so their axes are logarithmic.
constexpr Comparison comparisons[] = {
    {"compare-caught", "Spam called spam.", "More is better.", &Rules::CorpusFigures::caught,
     Kind::linear, "spam"},
    {"compare-false", "Ham called spam.", "Less is better; logarithmic.",
     &Rules::CorpusFigures::falsePositives, Kind::logarithmic, "spam"},
    {"compare-passed", "Ham called ham.", "More is better.", &Rules::CorpusFigures::passed,
     Kind::linear, "ham"},
    {"compare-missed", "Spam called ham.", "Less is better; logarithmic.",
     &Rules::CorpusFigures::missed, Kind::logarithmic, "ham"},
    {"compare-judgeable", "Judgeable.", "Messages with a public hop; the other rates are of these.",
     &Rules::CorpusFigures::judgeable, Kind::linear, "accent"},
};

std::string s_description(std::vector<Charts::NamedRate> const& rates) {
    std::string text;
    for (auto const& [name, rate] : rates) {
        text += (text.empty() ? "" : " ") + name + ": " + Rules::rateText(rate) + '.';
    }
    return text;
}

std::string s_figure(Comparison const& what, Rules::Evaluation const& evaluation) {
    std::vector<Charts::NamedRate> rates;
    for (auto const& corpus : evaluation.m_corpora) {
        rates.push_back({corpus.m_name, (corpus.*what.m_rate)()});
    }
    rates.push_back({evaluation.m_together.m_name, (evaluation.m_together.*what.m_rate)()});
    return figure(what.m_title, what.m_note,
                  Charts::rateChart({what.m_id, what.m_title, s_description(rates)}, rates,
                                    what.m_kind, what.m_colour));
}

std::string s_area(Rules::CorpusFigures const& figures) {
    auto const total = figures.judged();
    return total.m_spam == 0 || total.m_ham == 0 ? "&ndash;"
                                                 : Rules::fixedText(figures.m_roc.area(), 4);
}

std::string s_withInterval(Rules::Rate const& rate) {
    return rate.m_total == 0 ? shareText(rate)
                             : shareText(rate) + "<br><span class=\"muted\">" +
                                   Rules::intervalText(rate) + "</span>";
}

void s_addRow(Page::Table& table, Rules::CorpusFigures const& figures) {
    auto const judged = figures.judged();
    table.row({Page::isolated(figures.m_name), groupedText(judged.m_spam),
               groupedText(judged.m_ham), shareText(figures.judgeable()),
               s_withInterval(figures.caught()), s_withInterval(figures.falsePositives()),
               s_withInterval(figures.passed()), s_withInterval(figures.missed()),
               s_area(figures)});
}

} // namespace

std::string comparisonSection(Rules::Evaluation const& evaluation) {
    Page::Table table("The corpora side by side", {{"Corpus"},
                                                   {"Spam", true},
                                                   {"Ham", true},
                                                   {"Judgeable", true},
                                                   {"Spam called spam", true},
                                                   {"Ham called spam", true},
                                                   {"Ham called ham", true},
                                                   {"Spam called ham", true},
                                                   {"ROC area", true}});
    for (auto const& corpus : evaluation.m_corpora) {
        s_addRow(table, corpus);
    }
    s_addRow(table, evaluation.m_together);
    std::string figures;
    for (auto const& what : comparisons) {
        figures += s_figure(what, evaluation);
    }
    return section("comparison", "The corpora side by side",
                   "<p>Confidences of one site do not hold for another, so each corpus stands for "
                   "itself. Whiskers are 95&nbsp;% intervals (Wilson).</p>\n" +
                       table.html() + "<div class=\"figures\">\n" + figures + "</div>\n");
}

} // namespace Quorvane::Reports
