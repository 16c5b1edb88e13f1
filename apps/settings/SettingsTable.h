// SPDX-License-Identifier: Apache-2.0
//
// The settings that all programs share, those of a host that scans; and what a host can know about
// a message besides its text, as rows of the same kind: options of the command line and keys of
// rule tests, but not part of a settings file.
#pragma once

#include "apps/settings/HostSettings.h"
#include "apps/settings/SettingsSection.h"

#include <span>
#include <string>
#include <vector>

namespace Quorvane {

std::span<SettingRow<HostSettings> const> settingRows();

std::span<SettingRow<MessageFacts> const> factRows();

class SettingsStore : public Settings<HostSettings> {
  public:
    SettingsStore() : Settings("", settingRows()) {}
};

// One line for each setting that is allowed and hardly meant; a program shows them.
std::vector<std::string> settingWarnings(SettingsStore const& store);

class FactsStore : public Settings<MessageFacts> {
  public:
    FactsStore() : Settings("", factRows()) {}
};

} // namespace Quorvane
