// SPDX-License-Identifier: Apache-2.0
//
// A system of this process's own: a network with nothing but its loopback, and a resolver
// configuration that names 127.0.0.1. For processes that a test starts; there is no way back.
#pragma once

namespace Quorvane::Testing {

// For this thread and those that it starts. False where the machine does not let a process have
// that.
bool enterOwnSystem();

} // namespace Quorvane::Testing
