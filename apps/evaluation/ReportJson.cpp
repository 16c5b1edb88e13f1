// SPDX-License-Identifier: Apache-2.0
#include "apps/evaluation/Report.h"
#include "apps/text/Utf8.h"
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

Json s_verdicts(Rules::VerdictCounts const& counts) {
    return {{"spam", counts.m_spam}, {"ham", counts.m_ham}, {"none", counts.m_none}};
}

// JSON has no infinity: null says that no threshold is high enough.
Json s_threshold(double threshold) {
    return std::isfinite(threshold) ? Json(threshold) : Json();
}

Json s_roc(Rules::CorpusFigures const& figures) {
    auto const total = figures.judged();
    Json caught = Json::array();
    for (auto const share : shownFalsePositives) {
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
        bins.push_back({{"from", Rules::binStart(bin)},
                        {"meanConfidence", one.meanConfidence()},
                        {"spam", s_rate(one.spamRate())}});
    }
    return bins;
}

Json s_corpus(Rules::CorpusFigures const& figures) {
    return {{"name", figures.m_name},
            {"judgeable", s_rate(figures.judgeable())},
            {"notJudgeable", s_counts(figures.m_unjudged)},
            {"verdictsOnSpam", s_verdicts(figures.m_spamVerdicts)},
            {"verdictsOnHam", s_verdicts(figures.m_hamVerdicts)},
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

Json s_kinds(Rules::KindCounts const& counts) {
    Json json;
    for (auto const kind : Rules::mailKinds) {
        json[Rules::mailKindName(kind)] = counts.of(kind);
    }
    return json;
}

Json s_allVerdicts(Rules::Difference const& difference) {
    Json json;
    for (auto const kind : Rules::mailKinds) {
        json[Rules::mailKindName(kind)] = {{"before", s_verdicts(difference.m_before.of(kind))},
                                           {"after", s_verdicts(difference.m_after.of(kind))}};
    }
    return json;
}

Json s_changedCorpora(Rules::Difference const& difference) {
    auto list = Json::array();
    for (auto const& corpus : difference.m_corpora) {
        list.push_back({{"name", toUtf8(corpus.m_name)},
                        {"messages", corpus.m_messages},
                        {"changed", corpus.m_changed}});
    }
    return list;
}

Json s_ruling(Rules::JudgedVector const& judged, Rules::RuleSet const& set) {
    Json ruling{{"verdict", Rules::verdictName(judged.m_verdict)}};
    if (judged.m_decider.m_number == 0) {
        ruling["decider"] = nullptr;
        return ruling;
    }
    auto tests = Json::array();
    for (auto const& test : Workshop::deciderTests(set, judged.m_decider)) {
        tests.push_back({{"test", test.m_text}, {"words", test.m_words}});
    }
    ruling["decider"] = {{"kind", judged.m_decider.m_isElite ? "elite" : "tree"},
                         {"number", judged.m_decider.m_number},
                         {"confidence", judged.m_confidence},
                         {"support", judged.m_support},
                         {"adjust", judged.m_adjust},
                         {"tests", tests}};
    return ruling;
}

Json s_groups(Rules::Difference const& difference, ComparedSets const& sets) {
    auto groups = Json::array();
    for (auto const& group : difference.m_groups) {
        auto samples = Json::array();
        for (auto const& sample : group.m_samples) {
            samples.push_back({{"label", Rules::mailKindName(sample.m_kind)},
                               {"source", toUtf8(sample.m_source)}});
        }
        groups.push_back({{"messages", s_kinds(group.m_counts)},
                          {"before", s_ruling(group.m_before, sets.m_before.m_set)},
                          {"after", s_ruling(group.m_after, sets.m_after.m_set)},
                          {"samples", samples}});
    }
    return groups;
}

Json s_confidence(Rules::ConfidenceChanges const& changes) {
    return {{"up", changes.m_up},
            {"down", changes.m_down},
            {"mean", changes.mean()},
            {"largest", changes.m_largest},
            {"nowDecided", changes.m_nowDecided},
            {"noLongerDecided", changes.m_noLongerDecided}};
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

std::string differenceJson(Rules::Difference const& difference, ComparedSets const& sets) {
    Json const report = {{"before", toUtf8(sets.m_before.m_name)},
                         {"after", toUtf8(sets.m_after.m_name)},
                         {"spamThreshold", sets.m_before.m_settings.spamThreshold},
                         {"hamThreshold", sets.m_before.m_settings.hamThreshold},
                         {"messages", s_kinds(difference.m_messages)},
                         {"notJudgeable", s_kinds(difference.m_unjudged)},
                         {"changed", s_kinds(difference.changed())},
                         {"better", difference.better()},
                         {"worse", difference.worse()},
                         {"verdicts", s_allVerdicts(difference)},
                         {"corpora", s_changedCorpora(difference)},
                         {"changes", s_groups(difference, sets)},
                         {"sameVerdict", s_confidence(difference.m_confidence)}};
    return report.dump(2) + "\n";
}

} // namespace Quorvane::Reports
