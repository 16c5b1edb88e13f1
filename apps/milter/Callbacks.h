// SPDX-License-Identifier: Apache-2.0
//
// Callbacks: libmilter's side of the daemon. Each callback translates its arguments for the session
// and the session's reply for libmilter; nothing is decided here.
#pragma once

#include "apps/milter/Service.h"

namespace Quorvane::Milter {

// Registers the filter with libmilter. `service` serves all sessions and is never destroyed while
// callbacks run. False when libmilter refuses.
bool registerFilter(Service& service);

} // namespace Quorvane::Milter
