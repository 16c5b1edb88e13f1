// SPDX-License-Identifier: Apache-2.0
//
// The settings that a page asks for, as they stand in the address of its request behind "?":
// "spam-threshold=0.9&walk-to-leaf=0". Pure functions.
#pragma once

#include "apps/settings/HostSettings.h"

#include <string_view>

namespace Quorvane::Show {

// `host`, judging with what `query` names. Only settings that say how rules judge can be named. A
// SettingsError for others, and for values that they do not take.
HostSettings askedSettings(HostSettings host, std::string_view query);

} // namespace Quorvane::Show
