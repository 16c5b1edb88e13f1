// SPDX-License-Identifier: Apache-2.0
//
// Puts settings in force: the platform's process-wide tables first, then the engine. Called at
// start, before other threads scan.
#pragma once

#include "adapter/DeepHeaderAdapter.h"
#include "apps/settings/HostSettings.h"

namespace Quorvane {

// The platform alone. Throws a SettingsError that says which file or server is no good.
void setUpPlatform(HostSettings const& settings);

// Returns the engine. Throws a SettingsError that says which file or server is no good, or why the
// rules cannot be loaded.
RefDeepHeaderAdapter setUpHost(HostSettings const& settings);

} // namespace Quorvane
