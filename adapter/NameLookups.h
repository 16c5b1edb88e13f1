// SPDX-License-Identifier: Apache-2.0
//
// NameLookups: whether the two names of a scan resolve, asked side by side before
// the answers are needed. Part of a scan's record; one thread. Destroying it cancels what is
// pending.
#pragma once

#include "platform/Resolver.h"

#include <string>

namespace Quorvane {

class NameLookups {
  public:
    struct Answers {
        LookupResult m_announced;
        LookupResult m_sender;
    };

    NameLookups() = default;
    NameLookups(NameLookups&&) noexcept = default;
    NameLookups& operator=(NameLookups&&) noexcept = default;
    ~NameLookups() = default;
    // Answers go to the object that asked: a copy has nothing pending.
    NameLookups(NameLookups const& /*other*/) : NameLookups() {}
    NameLookups& operator=(NameLookups const& other) { return *this = NameLookups(other); }

    bool arePending() const { return m_arePending; }

    // Asks for the name that a host announced and for the sender's domain. An empty name is not
    // asked for and does not resolve. Does not block.
    void start(std::string const& announced, std::string const& sender);

    // Waits for the answers. Nothing is pending afterwards.
    Answers finish();

  private:
    bool m_arePending = false;
    PendingLookup m_announced;
    PendingLookup m_sender;
};

} // namespace Quorvane
