// SPDX-License-Identifier: Apache-2.0
//
// The commands of qvrules, and the table of what each takes. A command prints to standard output
// and returns the exit status. When it fails it throws a RuleError or a ProgramError, which become
// a message and a status.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/commandline/ProgramError.h"
#include "apps/settings/SettingsTable.h"
#include "rules/language/LoadRules.h"

#include <filesystem>

namespace Quorvane::RulesApp {

ProgramTable const& rulesTable();

int compile(CommandLine const& line);
int decompile(CommandLine const& line);
int check(CommandLine const& line);
int install(CommandLine const& line);
int status(CommandLine const& line);
int learn(CommandLine const& line);
// ExitStatus::findings when the adapted rules would be no better.
int adapt(CommandLine const& line);
int evaluate(CommandLine const& line);
int show(CommandLine const& line);
int explain(CommandLine const& line);
int test(CommandLine const& line);
// ExitStatus::findings when the verdict of a message changes.
int diff(CommandLine const& line);
int listAttributes(CommandLine const& line);

// Options of several commands. Each throws a UsageError, and a SettingsError for a bad settings
// file.
// The rule folder below --root, like DESTDIR of an installer. A RuleError when there is no such
// root.
std::filesystem::path ruleFolder(CommandLine const& line);
SettingsStore settingsStore(CommandLine const& line);
HostSettings hostSettings(CommandLine const& line);
MessageFacts messageFacts(CommandLine const& line);
bool hasFacts(CommandLine const& line);

// The number that an option gives, from `low` to `high`; keeps `number` if it is not given. Throws
// a UsageError.
void readNumberOption(CommandLine const& line, std::string const& name, double& number, double low,
                      double high);
void readNumberOption(CommandLine const& line, std::string const& name, int& number, int low,
                      int high);

// The rules that an argument names. A RuleError, and a UsageError when it names a message: then the
// arguments are probably swapped.
Rules::LoadedRules readRulesOf(CommandLine const& line, std::string_view argument);
// The same; says on standard error when their names cannot be used.
Rules::LoadedRules loadRulesOf(CommandLine const& line, std::string_view argument);

} // namespace Quorvane::RulesApp
