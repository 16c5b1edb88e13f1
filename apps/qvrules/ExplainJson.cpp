// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Explain.h"
#include "apps/story/RuleStory.h"
#include "apps/story/VerdictStory.h"
#include "apps/text/Utf8.h"
#include "rules/format/ValueWords.h"
#include "scanner/records/RecordAccess.h"

#include <nlohmann/json.hpp>

namespace Quorvane::RulesApp {

namespace {

using Json = nlohmann::ordered_json;

Json s_path(RuleStory const& story) {
    auto path = Json::array();
    for (auto const& told : story.m_path) {
        auto const& node = *told.m_node;
        path.push_back({{"node", told.m_number},
                        {"test", told.m_test ? Json(told.m_test->m_text) : Json()},
                        {"words", told.m_test ? Json(toUtf8(told.m_test->m_words)) : Json()},
                        {"confidence", double{node.confidence}},
                        {"support", double{node.support}},
                        {"counts",
                         {{"all", std::int32_t{node.value1}},
                          {"spam", std::int32_t{node.value2}},
                          {"ham", std::int32_t{node.value3}}}}});
    }
    return path;
}

// The low byte of the code, as it stands in the answer.
std::string s_letter(EliteNodes const& rule) {
    return toUtf8(std::string(1, static_cast<char>(rule.code & 0xFF)));
}

Json s_rule(ToldRule const& told) {
    auto const& rule = *told.m_rule;
    bool const adjusts = rule.type == EliteType::adjusting;
    auto tests = Json::array();
    for (auto const& test : told.m_tests) {
        tests.push_back({{"test", test.m_text}, {"words", toUtf8(test.m_words)}});
    }
    return {{"type", adjusts ? "adjust" : "decide"},
            {"code", adjusts ? Json(s_letter(rule)) : Json(std::int32_t{rule.code})},
            {"weight", double{rule.weight}},
            {"support", adjusts ? Json() : Json(double{rule.support})},
            {"chosen", told.m_isChosen},
            {"tests", tests}};
}

Json s_elite(RuleStory const& story) {
    auto rules = Json::array();
    for (auto const& rule : story.m_elite) {
        rules.push_back(s_rule(rule));
    }
    return rules;
}

Json s_needed(std::vector<ToldNeed> const& needs) {
    auto list = Json::array();
    for (auto const& need : needs) {
        list.push_back({{"verdict", need.m_verdict},
                        {"change", need.m_text},
                        {"words", toUtf8(need.m_words)}});
    }
    return list;
}

// Null when the rules were not asked.
Json s_attributes(ScanOutcome const& outcome) {
    if (outcome.m_error || !outcome.m_reachedVerdict) {
        return {};
    }
    auto attributes = Json::object();
    for (auto const& facts : attributeTable) {
        auto const value = outcome.m_record.attributes[facts.m_index];
        auto const word = valueWord(facts.m_index, value);
        attributes[std::string(facts.m_name)] = word.empty() ? Json(value) : Json(word);
    }
    return attributes;
}

} // namespace

std::string explanationJson(std::string const& source, ScanHost const& host,
                            ScanOutcome const& outcome, std::vector<StoryHop> const& trail) {
    auto const& answer = RecordAccess::record(outcome.m_answer);
    auto const story = tellRules(host, outcome);
    Json const record = {{"source", toUtf8(source)},
                         {"verdict", verdictName(outcome.m_answer)},
                         {"node", answer.m_node},
                         {"confidence", answer.m_confidenceDegree},
                         {"support", answer.m_supportDegree},
                         {"adjust", answer.m_adjust},
                         {"adjustReason", toUtf8(answer.m_adjustReason)},
                         {"reasons", toUtf8(outcome.m_answer.getReasons())},
                         {"because", toUtf8(tellReason(host, outcome, trail))},
                         {"sentences", toUtf8(story.m_sentences)},
                         {"path", s_path(story)},
                         {"end", story.m_end.empty() ? Json() : Json(story.m_end)},
                         {"elite", s_elite(story)},
                         {"needed", s_needed(tellNeeded(host, outcome, trail))},
                         {"attributes", s_attributes(outcome)}};
    return record.dump(-1, ' ', true) + "\n";
}

} // namespace Quorvane::RulesApp
