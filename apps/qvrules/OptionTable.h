// SPDX-License-Identifier: Apache-2.0
//
// The command line of qvrules: its commands and what each takes.
#pragma once

#include "apps/commandline/OptionTable.h"

namespace Quorvane::RulesApp {

ProgramTable const& rulesTable();

} // namespace Quorvane::RulesApp
