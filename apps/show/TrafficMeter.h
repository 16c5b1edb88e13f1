// SPDX-License-Identifier: Apache-2.0
//
// TrafficMeter: sends attribute vectors through an engine and counts what they come to.
#pragma once

#include "apps/show/Traffic.h"
#include "DeepHeaderEngine.h"
#include "rules/vectors/VectorTable.h"

namespace Quorvane::Show {

class TrafficMeter {
  public:
    // Both outlive the object.
    TrafficMeter(DeepHeaderEngine const& engine, DeepHeaderSettings const& settings)
        : m_engine(engine), m_settings(settings) {}

    // Counts `count` messages with this vector.
    void add(Rules::AttributeVector const& vector, std::uint64_t count);
    void addNotJudgeable(std::uint64_t count) { m_traffic.m_notJudgeable += count; }

    Traffic const& traffic() const { return m_traffic; }

  private:
    void addElite(ScanRecord const& record, std::uint64_t count);
    void addTree(ScanRecord const& record, std::uint64_t count);

    DeepHeaderEngine const& m_engine;
    DeepHeaderSettings const& m_settings;
    Traffic m_traffic;
};

} // namespace Quorvane::Show
