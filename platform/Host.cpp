// SPDX-License-Identifier: Apache-2.0
#include "platform/Host.h"

#include <algorithm>

namespace Quorvane {

void Host::take(ResolverMessage const& answer) {
    for (std::string const& rdata : answer.records()) {
        IPAddress const address = IPAddress::fromNetwork(rdata);
        if (!address.isNull()) {
            m_addresses.push_back(address);
        }
    }
    m_result = std::max(m_result, answer.result());
    if (m_result < LookupResult::failed && !m_addresses.empty()) {
        m_result = LookupResult::answered;
    }
}

Host::Host(std::string const& name, bool forwardLookup) {
    if (!forwardLookup) {
        return;
    }
    Resolver& resolver = Resolver::instance();
    PendingLookup v4 = resolver.start(RecordType::A, name, RecordClass::IN);
    PendingLookup v6 = resolver.start(RecordType::AAAA, name, RecordClass::IN);
    take(v4.wait());
    take(v6.wait());
}

} // namespace Quorvane
