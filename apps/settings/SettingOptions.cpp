// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/SettingOptions.h"

#include "apps/settings/SettingsFile.h"

namespace Quorvane {

void addRows(std::vector<OptionRow>& rows, std::span<SettingFacts const> facts,
             std::string_view group) {
    for (auto const& one : facts) {
        bool const isList = one.m_kind == SettingKind::list;
        auto const traits = Takes::anyText | (isList ? Takes::repeatable : 0U);
        rows.push_back({one.m_name, one.m_valueName, one.m_help, traits, '\0', group});
    }
}

void takeOptions(CommandLine const& line, SettingsSection& section) {
    for (auto const& facts : section.facts()) {
        if (!line.has(facts.m_name)) {
            continue;
        }
        try {
            section.set(facts.m_name, line.texts(facts.m_name), "command line");
        } catch (SettingsError const& error) {
            throw UsageError(std::string("--") + error.what());
        }
    }
}

void readSettings(CommandLine const& line, std::string_view program,
                  std::span<SettingsSection* const> sections) {
    if (line.has(configRow.m_name)) {
        loadSettingsFile(line.text(configRow.m_name), program, sections);
    }
    for (auto* const section : sections) {
        takeOptions(line, *section);
    }
}

} // namespace Quorvane
