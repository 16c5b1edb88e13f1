// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/Program.h"

#include "apps/commandline/Help.h"
#include "apps/commandline/Output.h"
#include "apps/commandline/StandardDescriptors.h"
#include "apps/text/Utf8.h"

#include <algorithm>
#include <cstring>
#include <iostream>
#include <new>
#include <system_error>
#include <unistd.h>

namespace Quorvane {

namespace {

using Words = std::vector<std::string>;

int s_run(ProgramTable const& program, Words const& words, int (*run)(CommandLine const&)) {
    auto const line = parseCommandLine(program, words);
    if (line.has(helpRow.m_name)) {
        printOutput(helpText(program, line.command()));
    } else if (line.has(versionRow.m_name)) {
        printOutput(std::string(program.m_name) + " " QV_VERSION "\n");
    } else {
        return run(line);
    }
    return ExitStatus::ok;
}

int s_fail(ProgramTable const& program, std::string const& text, int status) {
    std::cerr << program.m_name << ": " << toPrintableLines(text) << '\n';
    return status;
}

// The command line that shows the options.
std::string s_helpCommand(ProgramTable const& program, Words const& words) {
    auto const& commands = program.m_commands;
    bool const hasCommand =
        !words.empty() && std::any_of(commands.begin(), commands.end(),
                                      [&words](auto const& row) { return row.m_name == words[0]; });
    return std::string(program.m_name) + (hasCommand ? ' ' + words[0] : "") + " --help";
}

// The text for an error that is not the user's: of the machine, or unexpected.
std::string s_reason(std::exception const& error) {
    if (dynamic_cast<std::bad_alloc const*>(&error) != nullptr) {
        return "there is not enough memory (see \"ulimit -v\" and the limits of a container)";
    }
    auto const* const system = dynamic_cast<std::system_error const*>(&error);
    if (system != nullptr && system->code() == std::errc::resource_unavailable_try_again) {
        return "the system gives no more threads (see \"ulimit -u\" and the limits of a container)";
    }
    return std::string("unexpected: ") + error.what();
}

} // namespace

int runProgram(ProgramTable const& program, int argc, char const* const* argv,
               int (*run)(CommandLine const& line)) {
    openClosedDescriptors();
    Words const words(argv + std::min(argc, 1), argv + argc);
    try {
        return s_run(program, words, run);
    } catch (UsageError const& error) {
        return s_fail(program,
                      toPrintable(error.what()) + "\n\"" + s_helpCommand(program, words) +
                          "\" shows the options.",
                      error.status());
    } catch (ProgramError const& error) {
        return s_fail(program, error.what(), error.status());
    } catch (std::exception const& error) {
        return s_fail(program, s_reason(error), ExitStatus::internal);
    }
}

void printOutput(std::string const& text) {
    Output output(STDOUT_FILENO);
    output.write(text);
    if (output.error() != 0) {
        throw ProgramError(ExitStatus::cannotWrite,
                           std::string("standard output: cannot be written: ") +
                               std::strerror(output.error()));
    }
}

} // namespace Quorvane
