// SPDX-License-Identifier: Apache-2.0
//
// LookupEnd: while it lives, a request to stop ends the look-ups that scans wait for. What these
// scans then give is not to be shown: names that exist were not found.
#pragma once

#include "platform/Resolver.h"

#include <stop_token>
#include <utility>

namespace Quorvane {

class LookupEnd {
  public:
    explicit LookupEnd(std::stop_token stop)
        : m_onStop(std::move(stop), [] { Resolver::instance().stop(); }) {}

  private:
    std::stop_callback<void (*)()> m_onStop;
};

} // namespace Quorvane
