// SPDX-License-Identifier: Apache-2.0
#include "platform/LookupDeadline.h"

#include <algorithm>

namespace Quorvane {

namespace {

LookupDeadline::TimePoint& s_current() {
    static thread_local LookupDeadline::TimePoint s_end = LookupDeadline::TimePoint::max();
    return s_end;
}

} // namespace

LookupDeadline::LookupDeadline(std::chrono::milliseconds time) : m_before(s_current()) {
    s_current() = std::min(m_before, std::chrono::steady_clock::now() + time);
}

LookupDeadline::~LookupDeadline() {
    s_current() = m_before;
}

LookupDeadline::TimePoint LookupDeadline::current() {
    return s_current();
}

} // namespace Quorvane
