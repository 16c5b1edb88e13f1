// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Evaluate.h"

#include <cmath>
#include <iomanip>
#include <sstream>

namespace Quorvane::RulesApp {

namespace {

constexpr std::size_t shownDeciders = 10;

std::string s_fixed(double value, int digits) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(digits) << value;
    return text.str();
}

std::string s_percent(double share) {
    constexpr double small = 0.1;
    auto const percent = 100.0 * share;
    return s_fixed(percent, percent < small ? 3 : 2) + " %";
}

// "12 of 3,456 (0.35 %, 0.20 to 0.61 %)"
std::string s_rate(Rules::Rate const& rate) {
    if (rate.m_total == 0) {
        return "none of 0";
    }
    auto const interval = Rules::wilsonInterval(rate);
    return std::to_string(rate.m_hits) + " of " + std::to_string(rate.m_total) + " (" +
           s_percent(rate.value()) + "; " + s_fixed(100.0 * interval.m_low, 2) + " to " +
           s_fixed(100.0 * interval.m_high, 2) + ")";
}

void s_line(std::ostream& text, std::string const& label, std::string const& value) {
    text << "  " << std::left << std::setw(34) << label << value << '\n';
}

void s_addRoc(std::ostream& text, Rules::CorpusFigures const& figures) {
    auto const total = figures.judged();
    if (total.m_spam == 0 || total.m_ham == 0) {
        s_line(text, "area under the ROC curve", "needs both spam and ham");
        return;
    }
    s_line(text, "area under the ROC curve", s_fixed(figures.m_roc.area(), 4));
    for (auto const share : toldFalsePositives) {
        auto const point = figures.m_roc.atFalsePositives(share);
        auto const threshold = std::isfinite(point.m_threshold)
                                   ? ", threshold " + s_fixed(point.m_threshold, 4)
                                   : std::string(", no threshold is high enough");
        s_line(text, "spam caught at " + s_fixed(100.0 * share, 1) + " % wrong",
               s_rate({point.m_called.m_spam, total.m_spam}) + threshold);
    }
}

void s_addReliability(std::ostream& text, Rules::CorpusFigures const& figures) {
    text << "  confidence: mean, and spam really there\n";
    for (std::size_t bin = 0; bin < Rules::reliabilityBins; ++bin) {
        auto const& one = figures.m_reliability.at(bin);
        if (one.m_counts.total() != 0) {
            auto const low = static_cast<double>(bin) / static_cast<double>(Rules::reliabilityBins);
            s_line(text, "  from " + s_fixed(low, 1) + ": " + s_fixed(one.meanConfidence(), 3),
                   s_rate(one.spamRate()));
        }
    }
}

void s_addCorpus(std::ostream& text, Rules::CorpusFigures const& figures) {
    text << figures.m_name << '\n';
    s_line(text, "judgeable", s_rate(figures.judgeable()));
    s_line(text, "spam called spam", s_rate(figures.caught()));
    s_line(text, "ham called spam", s_rate(figures.falsePositives()));
    s_line(text, "ham called ham", s_rate(figures.passed()));
    s_line(text, "spam called ham", s_rate(figures.missed()));
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
        text << "  " << (one.m_decider.m_isElite ? "elite rule " : "node ")
             << one.m_decider.m_number << ": " << one.m_reached.m_spam << " spam, "
             << one.m_reached.m_ham << " ham, wrong " << one.m_wrong.total() << ", confidence "
             << s_fixed(one.m_confidence, 4) << '\n'
             << "    " << deciderConditions(set, one.m_decider) << '\n';
        for (auto const& sample : one.m_samples) {
            text << "    wrong: " << sample << '\n';
        }
    }
    text << (deciders.empty() ? "  none\n\n" : "\n");
}

} // namespace

std::string evaluationText(Rules::Evaluation const& evaluation, EvaluatedRules const& rules) {
    std::ostringstream text;
    text << "Thresholds: spam " << rules.m_settings.spamThreshold << ", ham "
         << rules.m_settings.hamThreshold
         << ". Rates are of judgeable messages; behind each its 95 % interval (Wilson), in "
            "percent.\n\n";
    for (auto const& corpus : evaluation.m_corpora) {
        s_addCorpus(text, corpus);
    }
    if (evaluation.m_corpora.size() > 1) {
        s_addCorpus(text, evaluation.m_together);
    }
    s_addDeciders(text, "What decides most", evaluation.m_deciders.byUse(), rules.m_set);
    s_addDeciders(text, "What errs most", evaluation.m_deciders.byErrors(), rules.m_set);
    return text.str();
}

} // namespace Quorvane::RulesApp
