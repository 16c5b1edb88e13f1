// SPDX-License-Identifier: Apache-2.0
//
// The files that settings name. They may be pipes, as in --dns-data <(command), when they are read
// before the program keeps signals to itself: nobody can interrupt a wait for a pipe later, and a
// pipe can be read only once.
#pragma once

#include "apps/settings/HostSettings.h"

#include <string>

namespace Quorvane {

// The content of any file, up to Rules::maxRuleFileSize. Throws a SettingsError with the path.
std::string readSettingFile(std::string const& path);

// Throws a SettingsError for a pipe or device. `why` ends the message.
void requireRegularFile(std::string const& path, std::string const& why);

// The settings with what the files of patterns and zone lines hold. Throws a SettingsError.
HostSettings withFiles(HostSettings settings);

} // namespace Quorvane
