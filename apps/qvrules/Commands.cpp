// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"

#include "apps/commandline/Program.h"
#include "apps/settings/SettingFiles.h"
#include "apps/settings/SettingSources.h"
#include "rules/format/RuleFiles.h"
#include "rules/language/AttributePage.h"
#include "rules/model/RuleError.h"

#include <algorithm>

namespace Quorvane::RulesApp {

std::filesystem::path ruleFolder(CommandLine const& line) {
    auto const root = line.text("root", "/");
    std::error_code error;
    if (!std::filesystem::is_directory(root, error)) {
        throw Rules::RuleError(Rules::RuleError::Kind::noInput,
                               root + ": is not a folder; make it first, or correct --root");
    }
    return std::filesystem::path(root) / std::filesystem::path(ruleDirectory).relative_path();
}

SettingsStore settingsStore(CommandLine const& line) {
    SettingsStore settings;
    SettingsSection* const sections[] = {&settings};
    readSettings(line, "qvrules", sections);
    return settings;
}

HostSettings hostSettings(CommandLine const& line) {
    auto const settings = settingsStore(line);
    warnAbout(settings, "qvrules");
    return withFiles(settings.values());
}

MessageFacts messageFacts(CommandLine const& line) {
    FactsStore facts;
    takeOptions(line, facts);
    return facts.values();
}

int listAttributes(CommandLine const& /*line*/) {
    printOutput(Rules::attributePage());
    return ExitStatus::ok;
}

bool hasFacts(CommandLine const& line) {
    auto const rows = factRows();
    return std::any_of(rows.begin(), rows.end(),
                       [&line](auto const& row) { return line.has(row.m_facts.m_name); });
}

} // namespace Quorvane::RulesApp
