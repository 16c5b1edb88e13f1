// SPDX-License-Identifier: Apache-2.0
//
// The daemon's logger: to the journal, to syslog or to standard error. Lines on standard error
// carry their level as systemd reads it (sd-daemon(3)), which keeps it in the journal.
#pragma once

#include "apps/milter/MilterSettings.h"
#include "platform/Logger.h"

#include <memory>

namespace Quorvane::Milter {

std::shared_ptr<Logger> serviceLogger(LogTarget target);

} // namespace Quorvane::Milter
