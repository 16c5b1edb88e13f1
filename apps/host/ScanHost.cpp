// SPDX-License-Identifier: Apache-2.0
#include "apps/host/ScanHost.h"

#include "platform/LookupDeadline.h"

#include <iterator>
#include <utility>

namespace Quorvane {

ScanHost::ScanHost(HostSettings settings, LoadedRules rules)
    : m_settings(std::move(settings)),
      m_scores(std::make_shared<RelayScores const>(m_settings.m_scores, m_settings.m_dnsLists)) {
    take(std::move(rules));
}

void ScanHost::take(LoadedRules rules) {
    m_engine = std::move(rules.m_engine);
    m_version = rules.m_version;
    m_names = std::make_shared<Rules::NamesRead const>(std::move(rules.m_names));
}

ScanHost ScanHost::judgingWith(DeepHeaderSettings const& judging) const {
    auto host = *this;
    host.m_settings.m_judging = judging;
    return host;
}

ScanHost ScanHost::judgingWith(LoadedRules rules) const {
    auto host = *this;
    host.take(std::move(rules));
    return host;
}

ScanRecord ScanHost::judge(std::optional<std::array<std::int32_t, 38>> const& attributes,
                           RecordDepth depth) const {
    if (attributes) {
        return m_engine.judge(*attributes, m_settings.m_judging, depth);
    }
    ScanRecord record;
    record.isVector = true;
    return record;
}

std::vector<RecordedLookup> ScanHost::describeRelays(HeaderContainer const& headers,
                                                     IPAddress const& client,
                                                     MessageProperties& properties) const {
    LookupDeadline const end(m_settings.lookupTime() / 2);
    return m_scores->describe(headers, client, properties);
}

ScanRecord ScanHost::scan(HeaderContainer const& headers, MessageFacts const& facts,
                          RecordDepth depth) const {
    LookupDeadline const end(m_settings.lookupTime());
    RefMessageProperties properties(true);
    properties->clientScore(facts.m_clientScore);
    properties->status(facts.m_messageStatus);
    auto lookups = describeRelays(headers, facts.m_client, *properties.operator->());
    auto const current =
        facts.m_currentReceived ? Header("Received", *facts.m_currentReceived) : Header();
    DeepHeaderQuery query(headers, current, m_settings.m_judging, facts.m_currentIsForged,
                          facts.m_envelopeFrom, facts.m_headerFrom, facts.m_recipient, properties);
    auto record = m_engine.scan(query, depth);
    if (depth != RecordDepth::result) {
        std::move(record.lookups.begin(), record.lookups.end(), std::back_inserter(lookups));
        record.lookups = std::move(lookups);
    }
    return record;
}

} // namespace Quorvane
