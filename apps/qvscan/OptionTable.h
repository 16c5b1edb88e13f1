// SPDX-License-Identifier: Apache-2.0
//
// The command line of qvscan: options of a single run, what is known of the message, and the
// settings that all programs share.
#pragma once

#include "apps/commandline/OptionTable.h"

namespace Quorvane {

ProgramTable const& scanTable();

} // namespace Quorvane
