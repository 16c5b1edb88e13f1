// SPDX-License-Identifier: Apache-2.0
#include "apps/show/TrafficMeter.h"

#include <cstddef>

namespace Quorvane::Show {

void TrafficMeter::add(Rules::AttributeVector const& vector, std::uint64_t count) {
    auto const record = m_engine.judge(vector, m_settings, RecordDepth::steps);
    m_traffic.m_messages += count;
    m_traffic.m_undecided += record.verdict.decision == Decision::none ? count : 0;
    addElite(record, count);
    addTree(record, count);
}

void TrafficMeter::addElite(ScanRecord const& record, std::uint64_t count) {
    bool const decides = record.verdict.decision == Decision::elite;
    m_traffic.m_elite.resize(record.rules.size());
    for (std::size_t i = 0; i < record.rules.size(); ++i) {
        auto const& rule = record.rules[i];
        auto& use = m_traffic.m_elite[i];
        use.m_reached += rule.hasFired() ? count : 0;
        use.m_decided += decides && rule.outcome == RuleOutcome::chosen ? count : 0;
    }
}

void TrafficMeter::addTree(ScanRecord const& record, std::uint64_t count) {
    for (auto const& node : record.tree.path) {
        m_traffic.m_nodes.at(static_cast<std::size_t>(node.number)).m_reached += count;
    }
    if (record.verdict.decision == Decision::tree) {
        m_traffic.m_nodes.at(static_cast<std::size_t>(record.verdict.node)).m_decided += count;
    }
}

} // namespace Quorvane::Show
