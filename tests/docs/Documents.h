// SPDX-License-Identifier: Apache-2.0
//
// The generated documents, and what the built programs themselves say of their options.
#pragma once

#include "support/Program.h"
#include "support/ReadFile.h"

#include <set>
#include <string>
#include <vector>

namespace Quorvane::Testing {

using Names = std::set<std::string>;

std::string programPath(std::string const& program);
// Path of a generated file below share/.
std::string documentPath(std::string const& name);

// What PROGRAM --help, or PROGRAM COMMAND --help, prints.
std::string helpOf(std::string const& program, std::string const& command = {});
// The long options with "--" that a help text lists.
Names optionsIn(std::string const& help);
// The sub-commands that qvrules --help lists.
std::vector<std::string> rulesCommands();
// The words of all capture groups `number` of a pattern, line by line.
Names captures(std::string const& text, std::string const& pattern, std::size_t number = 1);

} // namespace Quorvane::Testing
