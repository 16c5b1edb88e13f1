// SPDX-License-Identifier: Apache-2.0
#include "platform/ReputationTable.h"

#include "platform/internal/RangeTable.h"

namespace Quorvane {

struct ReputationTable::Intervals {
    internal::RangeTable<std::int32_t> m_scores;
};

ReputationTable::ReputationTable(std::vector<Entry> const& entries)
    : m_intervals(new Intervals{internal::RangeTable<std::int32_t>(entries)}) {}

ReputationTable::ReputationTable(ReputationTable&&) noexcept = default;

ReputationTable& ReputationTable::operator=(ReputationTable&&) noexcept = default;

ReputationTable::~ReputationTable() = default;

std::optional<std::int32_t> ReputationTable::score(IPAddress const& address) const {
    auto const* const score = m_intervals->m_scores.find(address);
    return score == nullptr ? std::nullopt : std::optional(*score);
}

std::size_t ReputationTable::size() const {
    return m_intervals->m_scores.size();
}

} // namespace Quorvane
