// SPDX-License-Identifier: Apache-2.0
//
// ReputationTable: scores of address ranges, the longest prefix wins. Built once from any number of
// prefixes (sorted, disjoint intervals inside: a million prefixes load in about a second and look
// up by binary search), then immutable: share it read-only between threads.
#pragma once

#include "include2/Export.h"
#include "platform/IPAddress.h"
#include "platform/IPPrefix.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace Quorvane {

class QV_API ReputationTable {
  public:
    // A range of addresses, and its score.
    using Entry = std::pair<IPPrefix, std::int32_t>;

    // Of two entries with the same prefix the later one counts.
    explicit ReputationTable(std::vector<Entry> const& entries);
    ReputationTable(ReputationTable&&) noexcept;
    ReputationTable& operator=(ReputationTable&&) noexcept;
    ~ReputationTable();

    // Empty when no prefix holds the address, and for a null address.
    std::optional<std::int32_t> score(IPAddress const& address) const;
    // Number of intervals held.
    std::size_t size() const;

  private:
    struct Intervals;
    std::unique_ptr<Intervals> m_intervals;
};

} // namespace Quorvane
