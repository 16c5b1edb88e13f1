// SPDX-License-Identifier: Apache-2.0
//
// The settings that say how mail is scanned (relays, names, resolver), as options of the commands
// that look at mail. They are those of qvscan: one table names them for all programs.
#pragma once

#include "apps/settings/HostSettings.h"
#include "apps/settings/MessageFacts.h"

#include <map>
#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

namespace Quorvane::RulesApp {

// What was given, by option name.
using GivenSettings = std::map<std::string, std::vector<std::string>>;

// Adds --config and the settings. `given` must outlive the parse.
void addHostOptions(CLI::App& command, GivenSettings& given);
// Adds --config and those of the settings that say how rules judge.
void addThresholdOptions(CLI::App& command, GivenSettings& given);
// Adds what a host knows about a message besides its text.
void addFactOptions(CLI::App& command, GivenSettings& given);

// The settings file, if one was given, and over it the options. A SettingsError for what is wrong
// in the file, a UsageError for a wrong option.
HostSettings hostSettings(GivenSettings const& given);

// The facts among the options. A UsageError for what is wrong.
MessageFacts messageFacts(GivenSettings const& given);
bool hasFacts(GivenSettings const& given);

} // namespace Quorvane::RulesApp
