// SPDX-License-Identifier: Apache-2.0
#include "apps/host/RelayScores.h"

#include "MsgReceived.h"
#include "platform/Resolver.h"
#include "platform/Strings.h"

#include <algorithm>
#include <exception>
#include <optional>

namespace Quorvane {

namespace {

// The name of an address below a zone (RFC 5782 sections 2.1 and 2.4).
std::string s_listName(IPAddress const& address, std::string const& zone) {
    static constexpr char digits[] = "0123456789abcdef";
    auto const& bytes = address.bytes();
    std::string name;
    if (!address.isV6()) {
        for (auto byte = bytes.rbegin(); byte != bytes.rbegin() + 4; ++byte) {
            name += std::to_string(*byte) + '.';
        }
        return name + zone;
    }
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) {
        name += {digits[*byte & 0x0fU], '.', digits[*byte >> 4U], '.'};
    }
    return name + zone;
}

// Of the record data of an A record (RFC 1035 section 3.4.1).
IPAddress s_address(std::string const& data) {
    if (data.size() != 4) {
        return {};
    }
    IPAddress::Bytes bytes{};
    bytes[10] = bytes[11] = 0xff;
    std::copy(data.begin(), data.end(), bytes.begin() + 12);
    return IPAddress::fromBytes(bytes);
}

// Lowest of those of the records that mean something.
std::optional<std::int32_t> s_score(ResolverMessage const& answer, ReputationTable const& answers) {
    std::optional<std::int32_t> lowest;
    for (auto const& record : answer.records()) {
        if (auto const score = answers.score(s_address(record))) {
            lowest = std::min(lowest.value_or(*score), *score);
        }
    }
    return lowest;
}

std::int32_t s_scoreIn(ReceivedHeaderAnalysis const& analysis, IPAddress const& relay) {
    auto const found =
        std::find_if(analysis.begin(), analysis.end(), [&relay](AnalysedReceived const& entry) {
            return entry.m_received.address() == relay;
        });
    if (found != analysis.end()) {
        return found->m_score;
    }
    auto const* const table = analysis.reputation();
    return table == nullptr ? 0 : table->score(relay).value_or(0);
}

IPAddress s_relay(Header const& received) {
    try {
        return MsgReceived(received.value()).address();
    } catch (std::exception const&) {
        return {}; // the scan will say what is wrong with this header
    }
}

} // namespace

RelayScores::RelayScores(std::vector<ReputationTable::Entry> const& scores,
                         std::vector<DnsList> const& lists)
    : m_table(scores.empty() ? nullptr : std::make_shared<ReputationTable const>(scores)) {
    for (auto const& list : lists) {
        m_lists.push_back({list.m_zone, ReputationTable(list.m_answers)});
    }
}

// Those that the lists are to be asked about, each once; the client first.
std::vector<IPAddress> RelayScores::askedRelays(HeaderContainer const& headers,
                                                IPAddress const& client) const {
    std::vector<IPAddress> relays;
    auto const add = [this, &relays](IPAddress const& relay) {
        bool const isKnown = relay.isNull() || IPAddress::isPrivateAddress(relay) ||
                             (m_table != nullptr && m_table->score(relay)) ||
                             std::find(relays.begin(), relays.end(), relay) != relays.end();
        if (!isKnown) {
            relays.push_back(relay);
        }
    };
    if (m_lists.empty()) {
        return relays;
    }
    add(client);
    for (auto const& header : headers.headers()) {
        if (relays.size() < maxListedRelays &&
            stringCompareNoCase(header.type(), "received", 0) == 0) {
            add(s_relay(header));
        }
    }
    return relays;
}

void RelayScores::describe(HeaderContainer const& headers, IPAddress const& client,
                           MessageProperties& properties) const {
    auto& analysis = properties.receivedHeaderAnalysis();
    analysis.reputation(m_table);
    for (auto const& entry : askLists(askedRelays(headers, client))) {
        analysis.push_back(entry);
    }
    if (!client.isNull()) {
        properties.clientScore(static_cast<std::uint32_t>(s_scoreIn(analysis, client)));
    }
}

std::vector<AnalysedReceived> RelayScores::askLists(std::vector<IPAddress> const& relays) const {
    std::vector<PendingLookup> lookups;
    for (auto const& relay : relays) {
        for (auto const& list : m_lists) {
            lookups.push_back(Resolver::instance().start(
                RecordType::A, s_listName(relay, list.m_zone), RecordClass::IN));
        }
    }
    std::vector<AnalysedReceived> known;
    auto lookup = lookups.begin();
    for (auto const& relay : relays) {
        std::optional<std::int32_t> lowest;
        for (auto const& list : m_lists) {
            if (auto const score = s_score((lookup++)->wait(), list.m_answers)) {
                lowest = std::min(lowest.value_or(*score), *score);
            }
        }
        if (lowest) {
            known.push_back({Received(relay), *lowest});
        }
    }
    return known;
}

} // namespace Quorvane
