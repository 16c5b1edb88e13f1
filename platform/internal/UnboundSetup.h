// SPDX-License-Identifier: Apache-2.0
//
// Turns resolver settings into the configuration of a libunbound context.
#pragma once

#include "platform/Resolver.h"

struct ub_ctx;

namespace Quorvane::Dns {

// A name that every context answers by itself, whatever its settings.
inline constexpr char startQuestion[] = "_start._quorvane.invalid";

// REQUIRES: a fresh context and a mode other than off. An Exception of category 3 names the server
// or the line of zone data that is wrong.
void setUpUnbound(ub_ctx& context, ResolverSettings const& settings);

} // namespace Quorvane::Dns
