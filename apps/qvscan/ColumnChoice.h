// SPDX-License-Identifier: Apache-2.0
//
// Which columns the text has: what --columns asks for. Read once at start.
#pragma once

#include "apps/commandline/CommandLine.h"

#include <vector>

namespace Quorvane {

enum class Column {
    verdict,
    rule,
    relay,
    sender,
    date,
    source,
    addresses,
    from,
    subject,
    messageId
};

OptionRow columnsRow();

// In the order of the option, or the usual ones without it. Throws a UsageError.
std::vector<Column> chosenColumns(CommandLine const& line);

} // namespace Quorvane
