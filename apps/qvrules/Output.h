// SPDX-License-Identifier: Apache-2.0
//
// Writes the result of a command.
#pragma once

#include <string>

namespace Quorvane::RulesApp {

// To a file, replaced in one step, or to standard output for "-". What is not an ordinary file,
// such as a link or a device, is written into. A RuleError or ProgramError when that fails.
void writeOutput(std::string const& path, std::string const& text);

// Throws the RuleError of writeOutput, as far as it can be foreseen, before hours of work. An empty
// path: there is nothing to write.
void requireWritable(std::string const& path);

} // namespace Quorvane::RulesApp
