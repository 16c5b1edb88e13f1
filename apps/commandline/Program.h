// SPDX-License-Identifier: Apache-2.0
//
// Program: the main() of every program, given its table.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/commandline/ProgramError.h"

namespace Quorvane {

// Reads the command line, answers --help and --version, and otherwise calls `run`, whose result is
// the exit status. An exception of `run` becomes a message on standard error and an exit status.
int runProgram(ProgramTable const& program, int argc, char const* const* argv,
               int (*run)(CommandLine const& line));

// Writes to standard output. A ProgramError when that fails.
void printOutput(std::string const& text);

} // namespace Quorvane
