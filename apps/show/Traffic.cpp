// SPDX-License-Identifier: Apache-2.0
#include "apps/show/Traffic.h"

namespace Quorvane::Show {

void Traffic::add(DeepHeaderEngine const& engine, DeepHeaderSettings const& settings,
                  Rules::AttributeVector const& vector, std::uint64_t count) {
    auto const record = engine.judge(vector, settings, RecordDepth::steps);
    auto const decision = record.verdict.decision;
    m_messages += count;
    m_undecided += decision == Decision::none ? count : 0;
    m_elite.resize(record.rules.size());
    for (std::size_t i = 0; i < record.rules.size(); ++i) {
        auto const& rule = record.rules[i];
        bool const decides = decision == Decision::elite && rule.outcome == RuleOutcome::chosen;
        m_elite[i].m_reached += rule.hasFired() ? count : 0;
        m_elite[i].m_decided += decides ? count : 0;
    }
    for (auto const& node : record.tree.path) {
        m_nodes.at(static_cast<std::size_t>(node.number)).m_reached += count;
    }
    if (decision == Decision::tree) {
        m_nodes.at(static_cast<std::size_t>(record.verdict.node)).m_decided += count;
    }
}

} // namespace Quorvane::Show
