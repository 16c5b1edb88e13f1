// SPDX-License-Identifier: Apache-2.0
//
// Checks of resolver settings that libunbound does not make: it takes port 99999 for a port, "@"
// and a line that begins with blanks for the root, and ignores what follows a complete record. Each
// throws an Exception of category 3 that names the setting, what is wrong and what to do. Pure
// functions.
#pragma once

#include "platform/Resolver.h"

#include <cstddef>
#include <string>

namespace Quorvane::Dns {

void checkDeadline(std::chrono::milliseconds deadline);

// "ADDRESS" or "ADDRESS@PORT".
void checkServer(std::string const& server);

// The record in `line`, the `number`th from 1, as libunbound takes it, which wants the time to live
// before the class. Empty for an empty line and for a comment (";" or "#").
std::string zoneRecord(std::string const& line, std::size_t number);

// For a line that passed the check and that libunbound refuses all the same.
[[noreturn]] void refuseZoneLine(std::string const& line, std::size_t number,
                                 std::string const& problem);

} // namespace Quorvane::Dns
