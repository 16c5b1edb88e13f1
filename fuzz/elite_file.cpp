// SPDX-License-Identifier: Apache-2.0
//
// Loads arbitrary bytes as elite rules, beside a small tree. No bytes keep the tree from being
// loaded; the engine holds the rules that the tools read, judges vectors by them, and the file
// comes back from its text byte for byte.
#include "JudgedRules.h"
#include "RoundTrip.h"
#include "rules/check/Checker.h"

#include <algorithm>
#include <cstdint>

using namespace Quorvane;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

constexpr std::size_t mostVectors = 8;
constexpr char treeText[] = "tree {\n"
                            "    first_reverse_dynamic == yes: confidence 0.97 support 20\n"
                            "    first_reverse_dynamic != yes: confidence 0.04 support 80\n"
                            "}\n";

Rules::RuleSet const& s_tree() {
    static auto const s_set = Rules::compileRules(treeText).m_set;
    return s_set;
}

std::vector<AttributeVector> s_vectors(std::vector<EliteNodes> const& rules) {
    std::vector<AttributeVector> vectors(1);
    for (auto const& rule : rules) {
        if (vectors.size() == mostVectors) {
            break;
        }
        AttributeVector vector{};
        for (auto const& condition : rule.conditions) {
            pass(condition, vector);
        }
        vectors.push_back(vector);
    }
    return vectors;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const bytes(reinterpret_cast<char const*>(data), size);
    auto set = s_tree();
    set.m_elite = Rules::readElite(bytes);
    auto const& rules = set.m_elite->m_rules;
    check(Rules::writeElite(*set.m_elite) == bytes, "what is read is written back");
    auto const engine = loadEngine(Rules::writeTree(set), &bytes);
    check(engine.has_value(), "elite rules that cannot be loaded are left out");
    auto const vectors = s_vectors(rules);
    checkEngine(*engine, vectors);
    auto const record = engine->judge(vectors.front(), DeepHeaderSettings(), RecordDepth::steps);
    auto const kept = std::count_if(rules.begin(), rules.end(), isKeptRule);
    check(record.rules.size() == static_cast<std::size_t>(kept),
          "the engine holds the rules that the tools read");
    Rules::checkRules(set, DeepHeaderSettings());
    Rules::checkRoundTrip(set);
    return 0;
}
