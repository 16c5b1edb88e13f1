// SPDX-License-Identifier: Apache-2.0
//
// The command line of qvmilter.
#pragma once

#include "apps/commandline/OptionTable.h"

namespace Quorvane::Milter {

ProgramTable const& milterTable();

} // namespace Quorvane::Milter
