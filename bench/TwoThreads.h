// SPDX-License-Identifier: Apache-2.0
//
// TwoThreads: how much more two threads do than one.
#pragma once

#include <functional>

namespace Quorvane::Bench {

// Runs `work` on one thread and on two at once, several times, and prints the best ratio of what
// was done in the same time. A call should take some hundred milliseconds; calls run side by side
// and may share only what is not written to.
void printTwoThreadGain(std::function<void()> const& work);

} // namespace Quorvane::Bench
