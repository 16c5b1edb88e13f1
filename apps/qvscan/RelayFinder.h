// SPDX-License-Identifier: Apache-2.0
//
// RelayFinder: proposes settings for a site's own relays, from an archive of its mail. It judges
// the archive, takes the relays that judged messages and may be the site's own for internal, and
// judges again, as there may be further ones before them.
#pragma once

#include "apps/input/Interrupt.h"
#include "apps/qvscan/Options.h"

namespace Quorvane {

// Writes the proposal to standard output: lines of a settings file, with the counts that they rest
// on and what they would change as comments. The exit status; a ProgramError when an input cannot
// be read several times. Nothing outlives the call.
int findRelays(ScanOptions const& options, HostSettings const& settings, Interrupt& interrupt);

} // namespace Quorvane
