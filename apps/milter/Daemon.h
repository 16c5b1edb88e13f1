// SPDX-License-Identifier: Apache-2.0
//
// Daemon: the life of the process, from its socket to its last callback.
#pragma once

#include "apps/commandline/CommandLine.h"

namespace Quorvane::Milter {

// Serves until SIGTERM; the exit status. SIGUSR1 reloads. Throws a SettingsError when it cannot
// start. Called once.
int serve(CommandLine const& line);

// Reads the settings, all that they name, and the rules; throws what is wrong with them.
void checkSettings(CommandLine const& line);

} // namespace Quorvane::Milter
