// SPDX-License-Identifier: Apache-2.0
//
// ListedResult: one result, as lists of results show it. Points to what it is made of.
#pragma once

#include "apps/headers/MessageIdentity.h"
#include "rules/model/RuleNames.h"
#include "ScanRecord.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Quorvane {

struct ListedResult {
    std::string const& m_source;
    MessageIdentity const& m_message;
    std::optional<std::int64_t> m_received; // seconds since 1970 (ReceivedDate.h)
    ScanRecord const& m_record;
    Rules::RuleNames const& m_names;
};

} // namespace Quorvane
