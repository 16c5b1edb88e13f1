// SPDX-License-Identifier: Apache-2.0
#include "apps/evaluation/DifferenceReport.h"
#include "apps/evaluation/JsonParts.h"
#include "apps/text/Utf8.h"
#include "apps/workshop/DeciderText.h"

#include <nlohmann/json.hpp>

namespace Quorvane::Reports {

namespace {

using Json = nlohmann::ordered_json;

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
        json[Rules::mailKindName(kind)] = {{"before", verdictsJson(difference.m_before.of(kind))},
                                           {"after", verdictsJson(difference.m_after.of(kind))}};
    }
    return json;
}

Json s_corpora(Rules::Difference const& difference) {
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

std::string differenceJson(Rules::Difference const& difference, ComparedSets const& sets) {
    Json const report = {{"before", toUtf8(sets.m_before.m_name)},
                         {"after", toUtf8(sets.m_after.m_name)},
                         {"spamThreshold", sets.m_settings.spamThreshold},
                         {"hamThreshold", sets.m_settings.hamThreshold},
                         {"messages", s_kinds(difference.m_messages)},
                         {"notJudgeable", s_kinds(difference.m_unjudged)},
                         {"changed", s_kinds(difference.changed())},
                         {"better", difference.better()},
                         {"worse", difference.worse()},
                         {"verdicts", s_allVerdicts(difference)},
                         {"corpora", s_corpora(difference)},
                         {"changes", s_groups(difference, sets)},
                         {"sameVerdict", s_confidence(difference.m_confidence)}};
    return report.dump(2) + "\n";
}

} // namespace Quorvane::Reports
