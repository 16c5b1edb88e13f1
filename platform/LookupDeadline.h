// SPDX-License-Identifier: Apache-2.0
//
// LookupDeadline: one end for all look-ups of a message, however many it takes one after another.
#pragma once

#include "include2/Export.h"

#include <chrono>

namespace Quorvane {

// While the object lives, look-ups that its thread starts wait no longer than its end, or than the
// deadline of the resolver's settings, whichever comes first. Look-ups that start after the end are
// late at once, unless their answer needs no waiting. Within another one the earlier end counts.
// Destroy it on the thread that made it, the last one made first.
class QV_API LookupDeadline {
  public:
    // Of a clock that is never set.
    using TimePoint = std::chrono::steady_clock::time_point;

    // So long from now.
    explicit LookupDeadline(std::chrono::milliseconds time);
    LookupDeadline(LookupDeadline const&) = delete;
    LookupDeadline& operator=(LookupDeadline const&) = delete;
    ~LookupDeadline();

    // The end that counts on this thread; the end of all time without one.
    static TimePoint current();

  private:
    TimePoint m_before;
};

} // namespace Quorvane
