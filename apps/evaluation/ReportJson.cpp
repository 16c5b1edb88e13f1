// SPDX-License-Identifier: Apache-2.0
#include "apps/evaluation/JsonParts.h"
#include "apps/evaluation/Report.h"
#include "apps/workshop/DeciderText.h"

#include <cmath>
#include <nlohmann/json.hpp>

namespace Quorvane::Reports {

namespace {

using Json = nlohmann::ordered_json;

Json s_rate(Rules::Rate const& rate) {
    auto const interval = Rules::wilsonInterval(rate);
    return {{"count", rate.m_hits},
            {"of", rate.m_total},
            {"rate", rate.value()},
            {"low", interval.m_low},
            {"high", interval.m_high}};
}

Json s_counts(Rules::LabelCounts const& counts) {
    return {{"spam", counts.m_spam}, {"ham", counts.m_ham}};
}

// JSON has no infinity: null says that no threshold is high enough.
Json s_threshold(double threshold) {
    return std::isfinite(threshold) ? Json(threshold) : Json();
}

Json s_roc(Rules::CorpusFigures const& figures) {
    auto const total = figures.judged();
    Json caught = Json::array();
    for (auto const share : toldFalsePositives) {
        auto const point = figures.m_roc.atFalsePositives(share);
        caught.push_back({{"falsePositives", share},
                          {"threshold", s_threshold(point.m_threshold)},
                          {"caught", s_rate({point.m_called.m_spam, total.m_spam})}});
    }
    Json points = Json::array();
    for (auto const& point : figures.m_roc.points()) {
        points.push_back({point.m_threshold, point.m_called.m_spam, point.m_called.m_ham});
    }
    return {{"area", figures.m_roc.area()}, {"caughtAt", caught}, {"points", points}};
}

Json s_reliability(Rules::CorpusFigures const& figures) {
    Json bins = Json::array();
    for (std::size_t bin = 0; bin < Rules::reliabilityBins; ++bin) {
        auto const& one = figures.m_reliability.at(bin);
        auto const low = static_cast<double>(bin) / static_cast<double>(Rules::reliabilityBins);
        bins.push_back({{"from", low},
                        {"meanConfidence", one.meanConfidence()},
                        {"spam", s_rate(one.spamRate())}});
    }
    return bins;
}

Json s_corpus(Rules::CorpusFigures const& figures) {
    return {{"name", figures.m_name},
            {"judgeable", s_rate(figures.judgeable())},
            {"notJudgeable", s_counts(figures.m_unjudged)},
            {"verdictsOnSpam", verdictsJson(figures.m_spamVerdicts)},
            {"verdictsOnHam", verdictsJson(figures.m_hamVerdicts)},
            {"caught", s_rate(figures.caught())},
            {"falsePositives", s_rate(figures.falsePositives())},
            {"passed", s_rate(figures.passed())},
            {"missed", s_rate(figures.missed())},
            {"roc", s_roc(figures)},
            {"reliability", s_reliability(figures)}};
}

Json s_deciders(Rules::Evaluation const& evaluation, Rules::RuleSet const& set) {
    Json deciders = Json::array();
    for (auto const& one : evaluation.m_deciders.byUse()) {
        deciders.push_back({{"kind", one.m_decider.m_isElite ? "elite" : "tree"},
                            {"number", one.m_decider.m_number},
                            {"conditions", Workshop::deciderConditions(set, one.m_decider)},
                            {"confidence", one.m_confidence},
                            {"support", one.m_support},
                            {"reached", s_counts(one.m_reached)},
                            {"wrong", s_counts(one.m_wrong)},
                            {"samples", one.m_samples}});
    }
    return deciders;
}

} // namespace

std::string reportJson(Rules::Evaluation const& evaluation, EvaluatedRules const& rules) {
    Json corpora = Json::array();
    for (auto const& corpus : evaluation.m_corpora) {
        corpora.push_back(s_corpus(corpus));
    }
    Json const report = {{"spamThreshold", rules.m_settings.spamThreshold},
                         {"hamThreshold", rules.m_settings.hamThreshold},
                         {"corpora", corpora},
                         {"together", s_corpus(evaluation.m_together)},
                         {"deciders", s_deciders(evaluation, rules.m_set)}};
    // Names and sources come from paths, which need not be UTF-8.
    return report.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace Quorvane::Reports
