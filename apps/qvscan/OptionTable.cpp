// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/OptionTable.h"

#include "apps/settings/FactsTable.h"
#include "apps/settings/SettingsTable.h"

namespace Quorvane {

namespace {

constexpr OptionRow runOptions[] = {
    {"format", "text|json|csv", "default: text on a terminal, else json", false, outputGroup},
    {"explain", "", "add the working record of the scan", false, outputGroup},
    {"progress", "", "show progress, and failed look-ups at the end (default: on a terminal)",
     false, outputGroup},
    {"no-progress", "", "show neither", false, outputGroup},
    {"config", "FILE", "settings file (TOML); the command line wins", false, otherGroup},
    {"show-config", "", "print the settings in force and their origins", false, otherGroup},
    {"help", "", "show this", false, otherGroup, 'h'},
    {"version", "", "show the version", false, otherGroup},
};

void s_append(std::vector<OptionRow>& rows, std::string_view group) {
    for (auto const& option : runOptions) {
        if (option.m_group == group) {
            rows.push_back(option);
        }
    }
}

} // namespace

std::vector<OptionRow> optionRows() {
    std::vector<OptionRow> rows;
    s_append(rows, outputGroup);
    for (auto const& key : factKeys()) {
        rows.push_back({key.m_name, key.m_valueName, key.m_help, false, messageGroup});
    }
    for (auto const& key : settingKeys()) {
        rows.push_back({key.m_name, key.m_valueName, key.m_help, key.m_kind == SettingKind::list,
                        settingGroup});
    }
    s_append(rows, otherGroup);
    return rows;
}

} // namespace Quorvane
