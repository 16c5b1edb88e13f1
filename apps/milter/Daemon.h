// SPDX-License-Identifier: Apache-2.0
//
// Daemon: the life of the process, from its socket to its last callback.
#pragma once

#include <string>

namespace Quorvane::Milter {

// Serves until SIGTERM; the exit status. SIGUSR1 reloads. `path`: of the settings file, from "/"
// on. Throws a SettingsError when it cannot start. Called once.
int serve(std::string const& path, bool foreground);

// Reads the settings, all that they name, and the rules; throws what is wrong with them.
void checkSettings(std::string const& path);

} // namespace Quorvane::Milter
