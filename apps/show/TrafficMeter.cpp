// SPDX-License-Identifier: Apache-2.0
#include "apps/show/TrafficMeter.h"

#include "apps/story/RuleStory.h"
#include "rules/format/RuleTests.h"
#include "scanner/records/RecordAccess.h"

#include <algorithm>
#include <iterator>

namespace Quorvane::Show {

TrafficMeter::TrafficMeter(ScanHost const& host) : m_host(host) {
    m_traffic.m_elite.resize(host.engine()->eliteNodes().size());
}

void TrafficMeter::add(Rules::AttributeVector const& vector, std::uint64_t count) {
    m_traffic.m_messages += count;
    auto outcome = m_host.judge(vector);
    m_host.trace(outcome);
    addElite(outcome, count);
    addTree(outcome, count);
    auto const& answer = RecordAccess::record(outcome.m_answer);
    if (answer.m_node == 0 && !answer.m_isSpam) {
        m_traffic.m_undecided += count;
    }
}

void TrafficMeter::addElite(ScanOutcome const& outcome, std::uint64_t count) {
    bool const decides =
        DeepHeaderAdapter::doesEliteDecide(outcome.m_trace.m_elite, m_host.settings().m_judging);
    auto const& rules = m_host.engine()->eliteNodes();
    for (auto const& told : tellRules(m_host, outcome).m_elite) {
        auto const found = std::find_if(rules.begin(), rules.end(),
                                        [&told](auto const& rule) { return &rule == told.m_rule; });
        auto& use =
            m_traffic.m_elite.at(static_cast<std::size_t>(std::distance(rules.begin(), found)));
        use.m_reached += count;
        use.m_decided += decides && told.m_isChosen ? count : 0;
    }
}

void TrafficMeter::addTree(ScanOutcome const& outcome, std::uint64_t count) {
    auto const& trace = outcome.m_trace;
    for (int const number : trace.m_path) {
        m_traffic.m_nodes.at(static_cast<std::size_t>(number)).m_reached += count;
    }
    // What lies above is the root and what belongs to the file's writer: they decide nothing.
    if (canDecide(trace.m_result)) {
        m_traffic.m_nodes.at(static_cast<std::size_t>(trace.m_result)).m_decided += count;
    }
}

} // namespace Quorvane::Show
