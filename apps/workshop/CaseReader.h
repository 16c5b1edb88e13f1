// SPDX-License-Identifier: Apache-2.0
//
// One case of a file of rule tests, and what the file can give for all of them. Errors are
// SettingsErrors with file, line and column, RuleErrors for files that a case names.
#pragma once

#include "apps/settings/SettingsTable.h"
#include "apps/settings/Toml.h"
#include "apps/workshop/CaseFile.h"

#include <string>
#include <string_view>
#include <vector>

namespace Quorvane::Workshop {

// The settings that a case, or the table [settings], may give. dns is not one of them: it means
// something else there.
bool isCaseSetting(std::string_view name);
void addCaseSettings(std::vector<std::string_view>& names);

// The value of dns.
std::vector<std::string> readZoneLines(std::string const& path, toml::node const& node);

// A table [[case]]. `base` and `zoneLines` are its defaults.
RuleCase readCase(toml::table const& table, std::string const& path, SettingsStore const& base,
                  std::vector<std::string> const& zoneLines);

} // namespace Quorvane::Workshop
