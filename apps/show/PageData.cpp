// SPDX-License-Identifier: Apache-2.0
#include "apps/show/Page.h"
#include "rules/format/ValueWords.h"
#include "rules/language/Sentences.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

namespace Quorvane::Show {

namespace {

using Json = nlohmann::ordered_json;

// JSON has no infinities and no NaN: they are the texts that JavaScript reads as such.
Json s_number(double number) {
    if (std::isfinite(number)) {
        return number;
    }
    return std::isnan(number) ? "NaN" : number < 0 ? "-Infinity" : "Infinity";
}

Json s_table(ShownRules const& rules) {
    auto table = Json::array();
    for (auto const& node : rules.m_table) {
        auto children = Json::array();
        for (int slot = 0; slot < std::min<int>(node.childCount, maxChildren); ++slot) {
            children.push_back(node.children.at(static_cast<std::size_t>(slot)));
        }
        table.push_back({+node.attribute, +node.test, +node.testValue, +node.isLeaf, children,
                         +node.childCount, s_number(node.confidence), s_number(node.support)});
    }
    return table;
}

// The rules that engines keep, in their order.
Json s_elite(ShownRules const& rules) {
    auto list = Json::array();
    for (auto const& shown : rules.m_elite) {
        if (!shown.m_place) {
            continue;
        }
        auto conditions = Json::array();
        for (auto const& [attribute, test, value] : shown.m_rule.conditions) {
            conditions.push_back({attribute, test, value});
        }
        auto const& rule = shown.m_rule;
        list.push_back({+rule.code, s_number(rule.weight), s_number(rule.support), +rule.type,
                        +rule.level, conditions});
    }
    auto const header = rules.m_eliteHeader.value_or(EliteFileHeader{});
    return {{"selectMode", +header.selectMode},
            {"alsoWalkTree", +header.alsoWalkTree},
            {"rules", list}};
}

Json s_settings(DeepHeaderSettings const& settings) {
    return {{"walkToLeaf", settings.walkToLeaf},
            {"spamThreshold", s_number(settings.spamThreshold)},
            {"hamThreshold", s_number(settings.hamThreshold)},
            {"minSupport", s_number(settings.minSupport)},
            {"maxEliteLevel", settings.maxEliteLevel}};
}

Json s_attributes() {
    auto list = Json::array();
    for (auto const& facts : attributeTable) {
        auto words = Json::array();
        for (auto const& word : valueWords) {
            if (takesWord(facts, word)) {
                words.push_back({word.m_word, word.m_code});
            }
        }
        auto const alone = valueWithoutDeepHop(facts);
        list.push_back({{"name", facts.m_name},
                        {"start", facts.m_start},
                        {"withoutDeepHop", alone ? Json(*alone) : Json()},
                        {"words", words}});
    }
    return list;
}

Json s_sentences() {
    auto list = Json::array();
    for (auto const& sentence : Rules::sentenceTable()) {
        list.push_back({sentence.m_attribute, sentence.m_value ? Json(*sentence.m_value) : Json(),
                        sentence.m_is});
    }
    return list;
}

} // namespace

std::string pageData(ShownRules const& rules, PageExtras const& extras) {
    auto records = Json::array();
    for (auto const& record : extras.m_records) {
        records.push_back(Json::parse(record));
    }
    Json const data = {{"rules", {{"table", s_table(rules)}, {"elite", s_elite(rules)}}},
                       {"settings", s_settings(extras.m_settings)},
                       {"attributes", s_attributes()},
                       {"sentences", s_sentences()},
                       {"messages", records},
                       {"canJudge", !rules.m_loadProblem},
                       {"isServed", extras.m_isServed}};
    return data.dump();
}

} // namespace Quorvane::Show
