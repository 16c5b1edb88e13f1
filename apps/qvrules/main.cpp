// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/Program.h"
#include "apps/qvrules/Commands.h"
#include "apps/settings/SettingSources.h"
#include "apps/text/Utf8.h"
#include "apps/workshop/MailVectors.h"
#include "rules/model/RuleError.h"

#include <algorithm>
#include <csignal>
#include <iostream>
#include <iterator>

namespace Quorvane::RulesApp {

namespace {

struct Command {
    std::string_view m_name;
    int (*m_run)(CommandLine const& line);
};

constexpr Command commands[] = {
    {"compile", compile},
    {"decompile", decompile},
    {"check", check},
    {"install", install},
    {"status", status},
    {"learn", learn},
    {"adapt", adapt},
    {"evaluate", evaluate},
    {"show", show},
    {"explain", explain},
    {"test", test},
    {"diff", diff},
    {"attributes", listAttributes},
};

// Without a command the program can show the settings of the commands that scan mail.
int s_showConfig(CommandLine const& line) {
    if (!line.has(showConfigRow.m_name)) {
        throw UsageError("a command is missing");
    }
    printOutput(settingsStore(line).asToml());
    return ExitStatus::ok;
}

// In the order of RuleError::Kind.
constexpr int statuses[] = {ExitStatus::badData, ExitStatus::noInput, ExitStatus::cannotWrite,
                            ExitStatus::config};

int s_run(CommandLine const& line) {
    auto const* const command =
        std::find_if(std::begin(commands), std::end(commands),
                     [&line](Command const& one) { return one.m_name == line.command().m_name; });
    try {
        return command == std::end(commands) ? s_showConfig(line) : command->m_run(line);
    } catch (Rules::RuleError const& error) {
        // It begins with a file and a place in it, as the errors of compilers do.
        std::string const text = error.what();
        std::cerr << toPrintableLines(text) << (text.ends_with('\n') ? "" : "\n");
        return statuses[static_cast<std::size_t>(error.kind())];
    } catch (Workshop::ScanInterrupted const& interrupted) {
        return ExitStatus::interrupted + interrupted.m_signal;
    }
}

} // namespace

} // namespace Quorvane::RulesApp

int main(int argc, char** argv) {
    // A reader that closes the pipe ends the program silently, whatever handling we inherit.
    std::signal(SIGPIPE, SIG_DFL);
    return Quorvane::runProgram(Quorvane::RulesApp::rulesTable(), argc, argv,
                                Quorvane::RulesApp::s_run);
}
