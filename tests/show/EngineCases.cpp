// SPDX-License-Identifier: Apache-2.0
//
// Prints random rule sets, attribute vectors and settings as JSON, each with the page's data of the
// rules and the engine's answer: engine_agreement.py has the page judge the same.
//
//   engine_cases SETS VECTORS SEED
#include "apps/show/Page.h"
#include "apps/workshop/RuleEngine.h"
#include "DeepHeaderQuery.h"
#include "rules/check/Checker.h"
#include "rules/RuleGenerators.h"
#include "rules/vectors/VectorTable.h"
#include "scanner/records/RecordAccess.h"

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <nlohmann/json.hpp>

namespace Quorvane::Testing {
namespace {

using Json = nlohmann::ordered_json;
using MsgProperties = DeepHeaderAdapter::MsgProperties;
using EliteHits = DeepHeaderAdapter::EliteHits;

// Sizes of generated values, as rapidcheck counts them.
constexpr int size = 60;

template<typename Make>
auto s_random(std::uint64_t seed, Make make) {
    return rc::gen::exec(std::move(make))(rc::Random(seed), size).value();
}

RuleSet s_rules() {
    RuleSet set;
    genTree(set);
    // Most generated trees lead nowhere; the root leads on in these.
    if (set.m_nodes.size() > treeRoot + 1) {
        auto& root = set.m_nodes[treeRoot];
        auto const count = static_cast<std::int32_t>(set.m_nodes.size());
        root.isLeaf = 0;
        root.childCount = *rc::gen::inRange(1, maxChildren + 1);
        for (std::size_t slot = 0; slot < maxChildren; ++slot) {
            root.children[slot] = *rc::gen::inRange(treeRoot + 1, count);
        }
    }
    if (*rc::gen::inRange(0, 4) != 0) {
        set.m_elite = genElite();
    }
    return set;
}

DeepHeaderSettings s_settings() {
    DeepHeaderSettings settings;
    settings.walkToLeaf = *rc::gen::element<std::uint8_t>(0, 1, 1);
    settings.spamThreshold = *rc::gen::element(0.0, 0.5, 0.95, 94.9, 95.0);
    settings.hamThreshold = *rc::gen::element(0.0, 0.5, 0.95, 95.0);
    settings.minSupport = *rc::gen::element(0.0, 0.15, 50.0, -1.0);
    settings.maxEliteLevel = *rc::gen::element(0, 1, 2);
    return settings;
}

Rules::AttributeVector s_vector() {
    Rules::AttributeVector vector{};
    for (auto& value : vector) {
        value = *genInteger(4);
    }
    return vector;
}

Json s_number(double number) {
    if (std::isfinite(number)) {
        return number;
    }
    return std::isnan(number) ? "NaN" : number < 0 ? "-Infinity" : "Infinity";
}

Json s_elite(EliteHits const& hits) {
    auto reasons = Json::array();
    for (char const reason : hits.reasons) {
        reasons.push_back(int{static_cast<unsigned char>(reason)});
    }
    return {{"adjust", s_number(hits.adjust)},
            {"confidence", s_number(hits.confidence)},
            {"support", s_number(hits.support)},
            {"code", hits.code},
            {"reasons", reasons}};
}

DeepHeaderQuery s_query(DeepHeaderSettings const& settings) {
    return {HeaderContainer(), Header(),       settings,       0,
            EmailAddress(),    EmailAddress(), EmailAddress(), RefMessageProperties(true)};
}

Json s_answer(RefDeepHeaderAdapter& engine, DeepHeaderSettings const& settings,
              Rules::AttributeVector const& vector) {
    MsgProperties props;
    props.attributes = vector;
    EliteHits hits;
    if (engine->hasEliteNodes()) {
        engine->checkElite(hits, props, settings);
    }
    auto path = Json();
    if (!DeepHeaderAdapter::doesEliteDecide(hits, settings) && engine->consultsTree(settings)) {
        std::vector<int> walked;
        auto const result = engine->travelDT(settings, treeRoot, props, walked);
        path = {{"path", walked}, {"result", result}};
    }
    DeepHeaderAnswer const answer;
    auto& record = RecordAccess::record(answer);
    auto query = s_query(settings);
    engine->getResults(record, query, props);
    return {{"verdict", record.m_isSpam  ? "spam"
                        : record.m_isHam ? "ham"
                                         : "none"},
            {"node", record.m_node},
            {"confidence", s_number(record.m_confidenceDegree)},
            {"support", s_number(record.m_supportDegree)},
            {"adjust", s_number(record.m_adjust)},
            {"elite", s_elite(hits)},
            {"walk", path}};
}

Json s_case(std::uint64_t seed, int vectors) {
    auto const set = s_random(seed, s_rules);
    if (Rules::loadProblem(set)) {
        return {};
    }
    auto engine = Workshop::loadEngine(set);
    auto questions = Json::array();
    for (int i = 0; i < vectors; ++i) {
        auto const own = seed * 1000 + static_cast<std::uint64_t>(i);
        auto const settings = s_random(own, s_settings);
        auto const vector = s_random(own, s_vector);
        questions.push_back({{"settings",
                              {{"walkToLeaf", settings.walkToLeaf},
                               {"spamThreshold", settings.spamThreshold},
                               {"hamThreshold", settings.hamThreshold},
                               {"minSupport", settings.minSupport},
                               {"maxEliteLevel", settings.maxEliteLevel}}},
                             {"vector", vector},
                             {"answer", s_answer(engine, settings, vector)}});
    }
    auto const data = Json::parse(Show::pageData(Show::shownRules("random", set), {}));
    return {{"rules", data["rules"]}, {"questions", questions}};
}

} // namespace
} // namespace Quorvane::Testing

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "engine_cases SETS VECTORS SEED\n";
        return EXIT_FAILURE;
    }
    auto const seed = std::strtoull(argv[3], nullptr, 10);
    auto cases = nlohmann::ordered_json::array();
    for (int i = 0; i < std::atoi(argv[1]); ++i) {
        auto one =
            Quorvane::Testing::s_case(seed + static_cast<std::uint64_t>(i), std::atoi(argv[2]));
        if (!one.is_null()) {
            cases.push_back(std::move(one));
        }
    }
    std::cout << cases.dump() << '\n';
    return EXIT_SUCCESS;
}
