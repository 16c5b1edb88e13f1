// SPDX-License-Identifier: Apache-2.0
//
// Host: the addresses of a name. HostName: the name of an address. Plain values; constructing a
// Host may block on the Resolver for its deadline.
#pragma once

#include "include2/Export.h"
#include "platform/IPAddress.h"
#include "platform/Resolver.h"

#include <list>
#include <string>

namespace Quorvane {

// The name of an address, or null.
class QV_API HostName {
  public:
    // Null.
    HostName() = default;
    // `name` without trailing dot; null when empty.
    explicit HostName(std::string name) : m_name(static_cast<std::string&&>(name)) {}

    // True: there is no name.
    bool isNull() const { return m_name.empty(); }
    // Without trailing dot; empty when null.
    std::string const& asString() const { return m_name; }

  private:
    std::string m_name;
};

class QV_API Host {
  public:
    // With `forwardLookup` asks for the A and AAAA records of `name`, side by side; without it the
    // host is null.
    Host(std::string const& name, bool forwardLookup);

    // True when the name has no address, or none could be asked for.
    bool isNull() const { return m_addresses.empty(); }
    // In the order of the answers.
    std::list<IPAddress> const& addressList() const { return m_addresses; }
    // How the look-ups ended. When one of the two failed or came late, that counts: addresses may
    // be missing.
    LookupResult result() const { return m_result; }

  private:
    void take(ResolverMessage const& answer);

    std::list<IPAddress> m_addresses;
    LookupResult m_result = LookupResult::notAsked;
};

} // namespace Quorvane
