// SPDX-License-Identifier: Apache-2.0
//
// TrafficMeter: sends attribute vectors through an engine and counts what they come to.
#pragma once

#include "apps/host/ScanHost.h"
#include "apps/show/Traffic.h"
#include "rules/vectors/VectorTable.h"

namespace Quorvane::Show {

class TrafficMeter {
  public:
    // The host outlives the object.
    explicit TrafficMeter(ScanHost const& host);

    // Counts `count` messages with this vector.
    void add(Rules::AttributeVector const& vector, std::uint64_t count);
    void addNotJudgeable(std::uint64_t count) { m_traffic.m_notJudgeable += count; }

    Traffic const& traffic() const { return m_traffic; }

  private:
    void addElite(ScanOutcome const& outcome, std::uint64_t count);
    void addTree(ScanOutcome const& outcome, std::uint64_t count);

    ScanHost const& m_host;
    Traffic m_traffic;
};

} // namespace Quorvane::Show
