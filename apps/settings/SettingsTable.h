// SPDX-License-Identifier: Apache-2.0
//
// The settings that all programs share: those of a host that scans.
#pragma once

#include "apps/settings/HostSettings.h"
#include "apps/settings/SettingsSection.h"

#include <span>

namespace Quorvane {

std::span<SettingRow<HostSettings> const> settingRows();

class SettingsStore : public Settings<HostSettings> {
  public:
    SettingsStore() : Settings("", settingRows()) {}
};

} // namespace Quorvane
