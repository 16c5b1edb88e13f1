// SPDX-License-Identifier: Apache-2.0
//
// Completion: the scripts that bash and zsh complete a program's command line with. They stand
// alone and need no package beside the shell. Pure functions.
#pragma once

#include "apps/commandline/OptionTable.h"

#include <string>

namespace Quorvane::Docs {

// A function _NAME, tied to the program with complete -F.
std::string bashCompletion(ProgramTable const& program);
// A file _NAME for a folder of fpath.
std::string zshCompletion(ProgramTable const& program);

} // namespace Quorvane::Docs
