// SPDX-License-Identifier: Apache-2.0
//
// The commands of qvrules, and the table of what each takes. A command prints to standard output
// and returns the exit status. When it fails it throws a RuleError or a ProgramError, which become
// a message and a status.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/commandline/ProgramError.h"
#include "apps/settings/SettingsTable.h"

namespace Quorvane::RulesApp {

ProgramTable const& rulesTable();

int compile(CommandLine const& line);
int decompile(CommandLine const& line);
int check(CommandLine const& line);
int install(CommandLine const& line);
int learn(CommandLine const& line);
int evaluate(CommandLine const& line);
int show(CommandLine const& line);
int explain(CommandLine const& line);
int test(CommandLine const& line);
// ExitStatus::findings when the verdict of a message changes.
int diff(CommandLine const& line);
int listAttributes(CommandLine const& line);

// Options of several commands. Each throws a UsageError, and a SettingsError for a bad settings
// file.
SettingsStore settingsStore(CommandLine const& line);
HostSettings hostSettings(CommandLine const& line);
MessageFacts messageFacts(CommandLine const& line);
bool hasFacts(CommandLine const& line);

} // namespace Quorvane::RulesApp
