// SPDX-License-Identifier: Apache-2.0
//
// The daemon's logger: to the journal, to syslog or to standard error.
#pragma once

#include "apps/milter/MilterSettings.h"
#include "platform/Logger.h"

#include <memory>

namespace Quorvane::Milter {

// Standard error gives way to syslog in the background, where nobody reads it, and to the journal
// where systemd has tied it to that: the journal itself keeps the levels of the lines.
std::shared_ptr<Logger> serviceLogger(LogTarget target, bool foreground);

} // namespace Quorvane::Milter
