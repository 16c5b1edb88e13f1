// SPDX-License-Identifier: Apache-2.0
#include "platform/Host.h"

#include <algorithm>
#include <cstddef>

namespace Quorvane {
namespace {

constexpr std::size_t s_v4Length = 4;
constexpr std::size_t s_v6Length = 16;

// The address in the data of an A or AAAA record; null for data of another length.
IPAddress s_addressOf(std::string const& rdata) {
    IPAddress::Bytes bytes{};
    if (rdata.size() != s_v4Length && rdata.size() != s_v6Length) {
        return {};
    }
    if (rdata.size() == s_v4Length) {
        bytes[10] = bytes[11] = 0xff;
    }
    std::transform(rdata.rbegin(), rdata.rend(), bytes.rbegin(),
                   [](char c) { return static_cast<std::uint8_t>(c); });
    return IPAddress::fromBytes(bytes);
}

} // namespace

void Host::take(ResolverMessage const& answer) {
    for (std::string const& rdata : answer.records()) {
        IPAddress const address = s_addressOf(rdata);
        if (!address.isNull()) {
            m_addresses.push_back(address);
        }
    }
    m_result = m_addresses.empty() ? std::max(m_result, answer.result()) : LookupResult::answered;
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
