// SPDX-License-Identifier: Apache-2.0
//
// The tools read rule files as the engine does: what they call loadable loads, and what they read
// is what the engine holds.
#include "adapter/DeepHeaderAdapter.h"
#include "include2/DeepHeaderException.h"
#include "RuleGenerators.h"
#include "rules/check/Checker.h"
#include "rules/model/Binary.h"
#include "rules/model/RuleFolder.h"
#include "support/RuleFolder.h"

#include <algorithm>
#include <memory>

namespace Quorvane::Testing {
namespace {

std::unique_ptr<DeepHeaderAdapter> s_load() {
    try {
        return std::make_unique<DeepHeaderAdapter>();
    } catch (DeepHeaderException const&) {
        return nullptr;
    }
}

void s_damage(RuleSet& set) {
    for (int left = *rc::gen::inRange(0, 3); left > 0 && !set.m_nodes.empty(); --left) {
        auto& node = set.m_nodes[*rc::gen::inRange<std::size_t>(0, set.m_nodes.size())];
        switch (*rc::gen::inRange(0, 3)) {
        case 0:
            node.attribute = *genInteger(60);
            break;
        case 1:
            node.test = *genInteger(4);
            break;
        default:
            node.value1 = *genInteger(2);
        }
    }
}

// The rules that the loader keeps of those that it reads.
std::size_t s_kept(Rules::EliteFile const& elite) {
    return static_cast<std::size_t>(
        std::count_if(elite.m_rules.begin(), elite.m_rules.end(), [](EliteNodes const& rule) {
            return rule.flag <= maxEliteFlag &&
                   std::all_of(rule.conditions.begin(), rule.conditions.end(),
                               [](EliteCondition const& condition) {
                                   return condition.attribute <= maxAttribute &&
                                          condition.test <= Comparison::differs;
                               });
        }));
}

RC_GTEST_PROP(EngineAgreementTest, ATreeLoadsWhenTheCheckerSaysSo, ()) {
    RuleFolder const folder;
    RuleSet set;
    genTree(set);
    s_damage(set);
    if (*rc::gen::inRange(0, 8) == 0) {
        set.m_nodes.resize(*rc::gen::element<std::size_t>(499, 500, 501), genNode(499));
        set.m_treeTail.clear();
    }
    folder.writeFile(treeFileName, Rules::writeTree(set));
    auto const engine = s_load();
    RC_ASSERT((engine == nullptr) == Rules::loadProblem(set).has_value());
    if (engine) {
        auto const& table = engine->treeNodes();
        auto const bytes = Rules::writeTree(set);
        RC_ASSERT(std::memcmp(table.data(), bytes.data(), bytes.size()) == 0);
    }
}

RC_GTEST_PROP(EngineAgreementTest, TheEngineHoldsTheEliteRulesThatTheToolsRead, ()) {
    RuleFolder const folder;
    folder.writeTree({});
    auto bytes = Rules::writeElite(genElite());
    bytes.resize(bytes.size() - std::min<std::size_t>(bytes.size(), *rc::gen::inRange(0, 50)));
    folder.writeFile(eliteFileName, bytes);
    auto const engine = s_load();
    RC_ASSERT(engine != nullptr);
    RC_ASSERT(engine->eliteNodes().size() == s_kept(Rules::readElite(bytes)));
}

} // namespace
} // namespace Quorvane::Testing
