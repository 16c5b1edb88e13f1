// SPDX-License-Identifier: Apache-2.0
#include "apps/evaluation/Report.h"
#include "apps/text/Utf8.h"
#include "apps/workshop/DeciderText.h"
#include "rules/evaluate/FigureText.h"

#include <cmath>
#include <iomanip>
#include <sstream>

namespace Quorvane::Reports {

namespace {

void s_line(std::ostream& text, std::string const& label, std::string const& value) {
    text << "  " << std::left << std::setw(34) << label << value << '\n';
}

void s_addRoc(std::ostream& text, Rules::CorpusFigures const& figures) {
    auto const total = figures.judged();
    if (total.m_spam == 0 || total.m_ham == 0) {
        s_line(text, "area under the ROC curve", "needs both spam and ham");
        return;
    }
    s_line(text, "area under the ROC curve", Rules::fixedText(figures.m_roc.area(), 4));
    for (auto const share : shownFalsePositives) {
        auto const point = figures.m_roc.atFalsePositives(share);
        auto const threshold = std::isfinite(point.m_threshold)
                                   ? ", threshold " + Rules::fixedText(point.m_threshold, 4)
                                   : std::string(", no threshold is high enough");
        s_line(text, "spam caught at " + Rules::fixedText(100.0 * share, 1) + " % wrong",
               Rules::rateText({point.m_called.m_spam, total.m_spam}) + threshold);
    }
}

void s_addReliability(std::ostream& text, Rules::CorpusFigures const& figures) {
    text << "  confidence: mean, and actual share of spam\n";
    for (std::size_t bin = 0; bin < Rules::reliabilityBins; ++bin) {
        auto const& one = figures.m_reliability.at(bin);
        if (one.m_counts.total() != 0) {
            s_line(text,
                   "  from " + Rules::fixedText(Rules::binStart(bin), 1) + ": " +
                       Rules::fixedText(one.meanConfidence(), 3),
                   Rules::rateText(one.spamRate()));
        }
    }
}

void s_addCorpus(std::ostream& text, Rules::CorpusFigures const& figures) {
    text << toPrintable(figures.m_name) << '\n';
    s_line(text, "judgeable", Rules::rateText(figures.judgeable()));
    s_line(text, "spam called spam", Rules::rateText(figures.caught()));
    s_line(text, "ham called spam", Rules::rateText(figures.falsePositives()));
    s_line(text, "ham called ham", Rules::rateText(figures.passed()));
    s_line(text, "spam called ham", Rules::rateText(figures.missed()));
    s_line(text, "no verdict",
           std::to_string(figures.m_spamVerdicts.m_none) + " spam, " +
               std::to_string(figures.m_hamVerdicts.m_none) + " ham");
    s_addRoc(text, figures);
    s_addReliability(text, figures);
    text << '\n';
}

void s_addDeciders(std::ostream& text, std::string const& title,
                   std::vector<Rules::DeciderFigures> const& deciders, Rules::RuleSet const& set) {
    text << title << '\n';
    for (std::size_t i = 0; i < deciders.size() && i < shownDeciders; ++i) {
        auto const& one = deciders[i];
        text << "  " << Workshop::deciderName(one.m_decider) << ": " << one.m_reached.m_spam
             << " spam, " << one.m_reached.m_ham << " ham, wrong " << one.m_wrong.total()
             << ", confidence " << Rules::fixedText(one.m_confidence, 4) << '\n'
             << "    " << Workshop::deciderConditions(set, one.m_decider) << '\n';
        for (auto const& sample : one.m_samples) {
            text << "    wrong: " << toPrintable(sample) << '\n';
        }
    }
    text << (deciders.empty() ? "  none\n\n" : "\n");
}

} // namespace

std::string reportText(Rules::Evaluation const& evaluation, EvaluatedRules const& rules) {
    std::ostringstream text;
    text << "Thresholds: spam " << rules.m_settings.spamThreshold << ", ham "
         << rules.m_settings.hamThreshold
         << ". Rates are of judgeable messages; after each its 95 % interval (Wilson), in "
            "percent.\n\n";
    for (auto const& corpus : evaluation.m_corpora) {
        s_addCorpus(text, corpus);
    }
    if (evaluation.m_corpora.size() > 1) {
        s_addCorpus(text, evaluation.m_together);
    }
    s_addDeciders(text, "What decides most", evaluation.m_deciders.byUse(), rules.m_set);
    s_addDeciders(text, "What is wrong most often", evaluation.m_deciders.byErrors(), rules.m_set);
    return text.str();
}

} // namespace Quorvane::Reports
