// SPDX-License-Identifier: Apache-2.0
//
// Checks resolver settings and turns them into the configuration of a libunbound context.
// libunbound itself accepts port 99999, takes "@" and a line that begins with blanks for the root,
// and ignores what follows a complete record. Errors are Exceptions of category 3 that name the
// setting, what is wrong and what to do. The checks are pure functions.
#pragma once

#include "platform/Resolver.h"

#include <cstddef>
#include <string>

struct ub_ctx;

namespace Quorvane::Dns {

// A name that every context answers by itself, whatever its settings.
inline constexpr char startQuestion[] = "_start._quorvane.invalid";

void checkDeadline(std::chrono::milliseconds deadline);

// "ADDRESS" or "ADDRESS@PORT".
void checkServer(std::string const& server);

// The record in `line`, the `number`th from 1, in the form that libunbound reads: with the time to
// live before the class. Empty for an empty line and for a comment (";" or "#").
std::string zoneRecord(std::string const& line, std::size_t number);

// For a line that passed the check and that libunbound refuses all the same.
[[noreturn]] void refuseZoneLine(std::string const& line, std::size_t number,
                                 std::string const& problem);

// Checks and applies everything but the deadline. REQUIRES: a fresh context and a mode other than
// off.
void setUpUnbound(ub_ctx& context, ResolverSettings const& settings);

} // namespace Quorvane::Dns
