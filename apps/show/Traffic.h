// SPDX-License-Identifier: Apache-2.0
//
// Traffic: how much of some mail reaches each node and each elite rule. A plain value.
#pragma once

#include "DeepHeaderEngine.h"
#include "rules/format/RuleFiles.h"
#include "rules/vectors/VectorTable.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Quorvane::Show {

struct Traffic {
    struct Use {
        // Messages whose walk stood on the node, or that the elite rule fired for.
        std::uint64_t m_reached = 0;
        // Messages that it decided: the answer names it.
        std::uint64_t m_decided = 0;
    };

    // Messages that reached the rules, and those that did not: they have no public hop.
    std::uint64_t m_messages = 0;
    std::uint64_t m_notJudgeable = 0;
    // Messages that no rule decided.
    std::uint64_t m_undecided = 0;
    std::array<Use, treeTableSize> m_nodes{};
    // In the order of the engine's list.
    std::vector<Use> m_elite;

    Use const& node(std::int32_t number) const {
        return m_nodes.at(static_cast<std::size_t>(number));
    }
    // Of the rule at this place of the list.
    Use elite(std::size_t place) const { return place < m_elite.size() ? m_elite[place] : Use{}; }
    // Part of the messages, 0..1; 0 without messages.
    double share(std::uint64_t count) const {
        return m_messages == 0 ? 0.0 : static_cast<double>(count) / static_cast<double>(m_messages);
    }

    // Lets the engine judge `count` messages with this vector.
    void add(DeepHeaderEngine const& engine, DeepHeaderSettings const& settings,
             Rules::AttributeVector const& vector, std::uint64_t count);
};

} // namespace Quorvane::Show
