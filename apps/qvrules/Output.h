// SPDX-License-Identifier: Apache-2.0
//
// Where a command puts a whole text that it has made.
#pragma once

#include <string>

namespace Quorvane::RulesApp {

// To a file, replaced in one step, or to standard output for "-". What is no ordinary file, as a
// link or a device, is written into. A RuleError or ProgramError when that fails.
void writeOutput(std::string const& path, std::string const& text);

// The RuleError that writeOutput would end in, as far as it can be seen before the hours of work
// that make the text. Empty: there is nothing to write.
void requireWritable(std::string const& path);

} // namespace Quorvane::RulesApp
