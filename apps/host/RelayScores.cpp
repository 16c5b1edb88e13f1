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

// The lowest of the records that have a score.
std::optional<std::int32_t> s_score(ResolverMessage const& answer, ReputationTable const& answers) {
    std::optional<std::int32_t> lowest;
    for (auto const& record : answer.records()) {
        if (auto const score = answers.score(IPAddress::fromNetwork(record))) {
            lowest = std::min(lowest.value_or(*score), *score);
        }
    }
    return lowest;
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
    auto score = m_table == nullptr ? 0 : m_table->score(client).value_or(0);
    for (auto const& entry : askLists(askedRelays(headers, client))) {
        analysis.push_back(entry);
        if (entry.m_received.address() == client) {
            score = entry.m_score;
        }
    }
    if (!client.isNull()) {
        properties.clientScore(static_cast<std::uint32_t>(score));
    }
}

// RFC 5782 sections 2.1 and 2.4 say how a list is asked.
std::vector<AnalysedReceived> RelayScores::askLists(std::vector<IPAddress> const& relays) const {
    std::vector<PendingLookup> lookups;
    for (auto const& relay : relays) {
        for (auto const& list : m_lists) {
            lookups.push_back(Resolver::instance().start(
                RecordType::A, relay.reversedLabels() + list.m_zone, RecordClass::IN));
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
