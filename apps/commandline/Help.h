// SPDX-License-Identifier: Apache-2.0
//
// The text of --help, for a terminal of 80 columns. Pure.
#pragma once

#include "apps/commandline/OptionTable.h"

#include <string>

namespace Quorvane {

// `command` is the program's own row or one of its commands.
std::string helpText(ProgramTable const& program, CommandRow const& command);

} // namespace Quorvane
