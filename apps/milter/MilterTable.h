// SPDX-License-Identifier: Apache-2.0
//
// The daemon's own settings: the keys below [milter] in the settings file.
#pragma once

#include "apps/commandline/OptionTable.h"
#include "apps/milter/MilterSettings.h"
#include "apps/settings/SettingsSection.h"

#include <span>
#include <string>

namespace Quorvane::Milter {

std::span<SettingRow<MilterSettings> const> milterRows();

// The command line.
ProgramTable const& milterTable();

class MilterStore : public Settings<MilterSettings> {
  public:
    MilterStore() : Settings("milter", milterRows()) {}
};

// As settings name them.
void readSetting(std::string const& text, VerdictAction& field);
void readSetting(std::string const& text, FailureAction& field);
void readSetting(std::string const& text, LogTarget& field);
SettingTexts settingTexts(VerdictAction value);
SettingTexts settingTexts(FailureAction value);
SettingTexts settingTexts(LogTarget value);

} // namespace Quorvane::Milter
