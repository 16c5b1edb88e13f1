// SPDX-License-Identifier: Apache-2.0
//
// Filter: which messages are judged, and which results are written. Read once at start; then safe
// to ask from many threads.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "platform/HeaderContainer.h"
#include "ScanRecord.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Quorvane {

// The options of a filter.
std::vector<OptionRow> filterRows();

// What kind of result it is, as --only names them: "spam", "ham", "none", "unjudged" (the rules
// were not asked) or "error" (the scan failed).
std::string resultKind(ScanRecord const& record);

class Filter {
  public:
    // Everything is wanted.
    Filter() = default;
    // What the options say. Throws a UsageError.
    explicit Filter(CommandLine const& line);

    // Whether the message is to be judged: it was received in the period that is asked for.
    bool isInPeriod(HeaderContainer const& headers) const;
    // Whether the result is to be written.
    bool letsThrough(ScanRecord const& record) const;

  private:
    // Seconds since 1970.
    std::optional<std::int64_t> m_since;
    std::optional<std::int64_t> m_end; // the first one after the period
    std::set<std::string> m_kinds;     // empty: all
    std::set<std::int32_t> m_rules;    // empty: all
};

} // namespace Quorvane
