// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"

#include "apps/commandline/Program.h"
#include "apps/settings/SettingSources.h"
#include "rules/language/AttributePage.h"

#include <algorithm>

namespace Quorvane::RulesApp {

SettingsStore settingsStore(CommandLine const& line) {
    SettingsStore settings;
    SettingsSection* const sections[] = {&settings};
    readSettings(line, "qvrules", sections);
    return settings;
}

HostSettings hostSettings(CommandLine const& line) {
    return settingsStore(line).values();
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
