// SPDX-License-Identifier: Apache-2.0
//
// Which nodes and elite rules decide how many messages, and how often they are wrong.
#pragma once

#include "rules/evaluate/JudgedVector.h"
#include "rules/vectors/VectorTable.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Quorvane::Rules {

struct DeciderFigures {
    Decider m_decider;
    double m_confidence = 0.0;
    double m_support = 0.0;
    LabelCounts m_reached; // messages that it decided or was reported for
    // spam called ham and ham called spam
    LabelCounts m_wrong;
    // Sources of some messages that were judged wrongly.
    std::vector<std::string> m_samples;
};

class Deciders {
  public:
    // Samples kept for each decider.
    static constexpr std::size_t maxSamples = 3;

    void add(JudgedVector const& judged, LabelCounts const& counts,
             std::vector<std::string> const& wrongSources);

    // Ordered by messages, most first, and equal ones by number: those reported for them, and those
    // that were wrong about any.
    std::vector<DeciderFigures> byUse() const;
    std::vector<DeciderFigures> byErrors() const;

  private:
    std::map<Decider, DeciderFigures> m_figures;
};

} // namespace Quorvane::Rules
